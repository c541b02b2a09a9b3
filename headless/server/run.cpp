#include "headless/server/run.h"

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <thread>

#include "headless/editing/problem.h"
#include "headless/server/handover.h"
#include "headless/server/server.h"
#include "headless/server/signals.h"
#include "headless/storage/files.h"
#include "headless/storage/paths.h"
#include "platform/container.h"

namespace vell::headless {
namespace {

using std::chrono::milliseconds;

/// For the one that is starting to serve, or that is saving before it ends.
constexpr milliseconds otherStarts{10'000};
constexpr milliseconds otherOpens{60'000};
constexpr milliseconds farewell{500};

void warn(const std::string& message) { std::fprintf(stderr, "vell-headless: %s\n", message.c_str()); }

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
      warn(problem.what());
    }
  }
  for (auto outline = opened.rbegin(); outline != opened.rend(); ++outline)
    application.bringToFront(**outline);
}

int serve(ApplicationSocket socket, const std::vector<std::string>& paths, const std::string& version) {
  const QuitSignals signals;
  raiseDescriptorLimit();
  EventLoop loop;
  Application application(loop, {platform::containerDirectory(), warn, version});
  openFiles(application, paths);
  application.reopenUntitled();
  Server server(loop, application, socket.descriptor());
  loop.watch(signals.descriptor(), POLLIN, [&](short) { loop.stop(); });
  loop.run();
  loop.forget(signals.descriptor());
  socket.remove();
  server.finish(farewell);
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

}  // namespace

int run(const std::vector<std::string>& files, const std::string& version) {
  std::vector<std::string> paths;
  paths.reserve(files.size());
  for (const std::string& file : files) paths.push_back(standardisedPath(file));
  const std::string socketPath = platform::applicationSocketPath();
  makePrivateDirectory(platform::containerDirectory());
  const auto end = EventLoop::Clock::now() + otherStarts;
  do {
    if (auto socket = ApplicationSocket::claim(socketPath)) return serve(std::move(*socket), paths, version);
    if (const platform::Descriptor other = connectTo(socketPath)) return handOverTo(other, paths);
    std::this_thread::sleep_for(milliseconds(50));
  } while (EventLoop::Clock::now() < end);
  throw Problem("Another vell-headless holds " + socketPath +
                ".lock but does not serve; end it and start again");
}

}  // namespace vell::headless
