#include <sys/resource.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>
#include <sstream>
#include <thread>

#include "headless/editing/problem.h"
#include "headless/script/script_process.h"
#include "headless/program/running.h"
#include "headless/server/server.h"
#include "headless/server/signals.h"
#include "headless/storage/files.h"
#include "headless/storage/log_file.h"
#include "headless/storage/paths.h"
#include "platform/container.h"
#include "platform/notices.h"
#include "platform/process.h"

namespace vell::headless {
namespace {

using std::chrono::milliseconds;

/// How long to wait for another application that is starting, or saving before it ends.
constexpr milliseconds otherStarts{10'000};
constexpr milliseconds otherOpens{60'000};
constexpr milliseconds flushLimit{500};

void warn(const std::string& message) { std::fprintf(stderr, "vell-headless: %s\n", message.c_str()); }

void log(const std::string& message) {
  warn(message);
  static const LogFile file(platform::containerDirectory() + "/vell.log");
  file.append(message);
}

/// What people must not miss, also where a command started this process.
void report(const std::string& message) {
  log(message);
  platform::leaveNotice(message);
}

/// Every client costs a descriptor; the usual soft limit on macOS is 256.
void raiseDescriptorLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  limit.rlim_cur = limit.rlim_max == RLIM_INFINITY ? 8192 : std::min<rlim_t>(limit.rlim_max, 8192);
  setrlimit(RLIMIT_NOFILE, &limit);
}

void openFiles(Application& application, const std::vector<std::string>& paths) {
  std::vector<const OpenOutline*> opened;
  for (const std::string& path : paths) {
    try {
      opened.push_back(&application.open(path));
    } catch (const Problem& problem) {
      log(problem.what());
    }
  }
  for (auto outline = opened.rbegin(); outline != opened.rend(); ++outline)
    application.bringToFront(**outline);
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

int serve(ApplicationSocket socket, const std::vector<std::string>& paths) {
  const QuitSignals signals;
  raiseDescriptorLimit();
  EventLoop loop;
  Application application(
      loop, {platform::containerDirectory(), report, VELL_VERSION, platform::executablePath().value_or("")});
  openFiles(application, paths);
  application.reopenUntitled();
  Server server(loop, application, socket.descriptor());
  loop.watch(signals.descriptor(), POLLIN, [&](short) { loop.stop(); });
  runUntilStopped(loop);
  loop.forget(signals.descriptor());
  socket.remove();
  server.closeAfterFlush(flushLimit);
  return application.saveAll() ? 0 : 1;
}

int handOverTo(const platform::Descriptor& other, const std::vector<std::string>& paths) {
  if (paths.empty()) {
    warn("Vell runs already; there is nothing to open.");
    return 0;
  }
  for (const std::string& fault : handOver(paths, other, otherOpens)) warn(fault);
  return 0;
}

/// Serves the files (and what clients open) until a signal asks to quit; or, where another application serves
/// the socket, has it open them. Warnings about files that do not open go to standard error. Returns the exit
/// status.
int run(const std::vector<std::string>& files) {
  std::vector<std::string> paths;
  paths.reserve(files.size());
  for (const std::string& file : files) paths.push_back(standardisedPath(file));
  const std::string socketPath = platform::applicationSocketPath();
  makePrivateDirectory(platform::containerDirectory());
  const auto end = EventLoop::Clock::now() + otherStarts;
  do {
    if (auto socket = ApplicationSocket::claim(socketPath)) return serve(std::move(*socket), paths);
    if (const platform::Descriptor other = connectTo(socketPath)) return handOverTo(other, paths);
    std::this_thread::sleep_for(milliseconds(50));
  } while (EventLoop::Clock::now() < end);
  throw Problem("Another vell-headless holds " + socketPath +
                ".lock but does not serve; end it and start again");
}

}  // namespace
}  // namespace vell::headless

namespace {

constexpr int usageStatus = 64;

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::string_view(argv[1]) == vell::headless::scriptFlag)
    return vell::headless::serveScript();
  CLI::App app("Vell without a desktop: serves outline files to vell over the application's socket.",
               "vell-headless");
  app.set_version_flag("--version", VELL_VERSION);
  app.footer(
      "Runs until SIGTERM, SIGINT or SIGHUP. Where Vell runs already, the files are opened there and this "
      "ends at once.\n"
      "The socket is Library/Containers/app.vell.Vell/Data/cli.sock in the home directory.");
  std::vector<std::string> files;
  app.add_option("FILE", files,
                 "Outlines to open: .vell, .md, .markdown, .opml, .json, .txt and other texts; the first "
                 "comes to front.");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    std::ostringstream out;  // the standard streams are not set up
    std::ostringstream err;
    const int status = app.exit(error, out, err);
    std::fputs(out.str().c_str(), stdout);
    std::fputs(err.str().c_str(), stderr);
    return status == 0 ? 0 : usageStatus;
  }
  std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow further is an error of the write
  try {
    return vell::headless::run(files);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "vell-headless: %s\n", failure.what());
    return 1;
  }
}
