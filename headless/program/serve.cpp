#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <thread>

#include "headless/editing/problem.h"
#include "headless/program/program.h"
#include "headless/program/running.h"
#include "headless/server/server.h"
#include "headless/server/signals.h"
#include "headless/storage/files.h"
#include "headless/storage/log_file.h"
#include "headless/storage/paths.h"
#include "headless/storage/session.h"
#include "platform/container.h"
#include "platform/notices.h"
#include "platform/process.h"
#include "text/display_width.h"
#include "text/lines.h"

namespace vell::headless {
namespace {

using std::chrono::milliseconds;

/// How long to wait for another application that is starting, or saving before it ends.
constexpr milliseconds otherStarts{10'000};
constexpr milliseconds otherOpens{60'000};
constexpr milliseconds flushLimit{500};

/// Its lines without what a terminal would take for a command: file names may hold anything.
std::string printable(std::string_view message) {
  std::string lines;
  for (text::Lines each(message); each.next();)
    lines.append(each.number() > 1 ? "\n" : "").append(text::displayText(each.line()).text);
  return lines;
}

void log(const std::string& message) {
  warn(message);
  static const LogFile file(platform::containerDirectory() + "/vell.log");
  file.append(printable(message));
}

/// What people must not miss, also where a command started this process.
void report(const std::string& message) {
  log(message);
  platform::leaveNotice(printable(message));
}

/// Every client costs a descriptor; the usual soft limit on macOS is 256.
void raiseDescriptorLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  limit.rlim_cur = limit.rlim_max == RLIM_INFINITY ? 8192 : std::min<rlim_t>(limit.rlim_max, 8192);
  setrlimit(RLIMIT_NOFILE, &limit);
}

/// A file that cannot be opened is reported, as clients ask why. Throws Problem for a folder that cannot be
/// served.
void openGiven(Application& application, const std::string& path) {
  if (std::filesystem::is_directory(path)) {
    const bool empty = application.serveFolder(path) == 0;
    if (empty) warn(path + " holds no outlines yet; \"vell create outline " + path + "/notes.md\" makes one");
    return;
  }
  try {
    application.openBehind(path);
  } catch (const Problem& problem) {
    log(problem.what());
  }
}

void tellWhatIsServed(const Application& application) {
  const std::size_t count = application.outlines().size();
  const std::string outlines = count == 0   ? "no outlines yet (\"vell open outline FILE\" opens one)"
                               : count == 1 ? "1 outline"
                                            : std::to_string(count) + " outlines";
  warn("serves " + outlines + " as process " + std::to_string(getpid()) +
       ". Ctrl-C or \"vell-headless stop\" ends it.");
}

/// Errors that nobody asked for end nothing. If they come without end, what is unsaved is saved all the same.
void runUntilStopped(EventLoop& loop) {
  constexpr int mostErrors = 100;
  for (int errors = 0; errors < mostErrors; ++errors) {
    try {
      return loop.run();
    } catch (const std::exception& error) {
      report(std::string("An error in Vell: ") + error.what());
    }
  }
}

int serveAt(ApplicationSocket socket, const ServeOptions& options, const std::vector<std::string>& paths) {
  const QuitSignals signals;
  raiseDescriptorLimit();
  EventLoop loop;
  Application application(loop, {platform::containerDirectory(), report, options.version,
                                 platform::executablePath().value_or(""), log});
  Session session(loop, application);
  try {
    const ApplicationHold hold(loop.access(), signals.caught());
    for (const std::string& path : paths) openGiven(application, path);
    if (!options.fresh) session.reopen();
  } catch (const Abandoned&) {
    socket.remove();
    return 0;
  }
  session.keep();
  Server server(loop, application, socket.descriptor());
  loop.watch(signals.descriptor(), POLLIN, [&](short) { loop.stop(); });
  tellWhatIsServed(application);
  runUntilStopped(loop);
  loop.forget(signals.descriptor());
  socket.remove();
  server.closeAfterFlush(flushLimit);
  session.keep();
  return application.saveAll() ? 0 : 1;
}

void makeContainer() {
  try {
    makePrivateDirectory(platform::containerDirectory());
  } catch (const Problem& problem) {
    throw Problem(std::string(problem.what()) + " (the home directory is " + platform::homeDirectory() +
                  "; set HOME to your own)");
  }
}

int handOverTo(const platform::Descriptor& other, const std::vector<std::string>& paths, bool fresh) {
  const auto process = holderOf(platform::applicationSocketPath());
  const std::string runs =
      "Vell runs already" + (process ? " (process " + std::to_string(*process) + ")" : std::string());
  if (paths.empty())
    throw Problem(runs + ". \"vell-headless status\" shows what it serves, \"vell-headless stop\" ends it.");
  const std::vector<std::string> faults = handOver(paths, other, otherOpens);
  for (const std::string& fault : faults) warn(fault);
  if (!faults.empty()) return 1;
  if (fresh) warn("--fresh counts when it starts: what is open stays open.");
  warn(runs + " and serves that now, too. \"vell-headless status\" shows what it serves.");
  return 0;
}

}  // namespace

int serve(const ServeOptions& options) {
  const std::vector<std::string> paths = existingPaths(options.paths);
  const std::string socketPath = platform::applicationSocketPath();
  makeContainer();
  const auto end = EventLoop::Clock::now() + otherStarts;
  do {
    if (auto socket = ApplicationSocket::claim(socketPath))
      return serveAt(std::move(*socket), options, paths);
    if (const platform::Descriptor other = connectTo(socketPath))
      return handOverTo(other, paths, options.fresh);
    std::this_thread::sleep_for(milliseconds(50));
  } while (EventLoop::Clock::now() < end);
  throw Problem("Process " + std::to_string(holderOf(socketPath).value_or(0)) + " holds " + socketPath +
                ".lock but does not serve. Once \"vell-headless stop\" or \"kill -9\" has ended it, start "
                "again");
}

std::vector<std::string> existingPaths(const std::vector<std::string>& paths) {
  std::vector<std::string> standardised;
  standardised.reserve(paths.size());
  for (const std::string& path : paths) {
    if (path.empty()) throw Problem("A path is empty: name a file or a folder");
    standardised.push_back(standardisedPath(path));
    if (stampOf(standardised.back()) == FileStamp()) throw NoSuchPath(standardised.back(), path);
  }
  return standardised;
}

void warn(const std::string& message) {
  std::fprintf(stderr, "vell-headless: %s\n", printable(message).c_str());
}

}  // namespace vell::headless
