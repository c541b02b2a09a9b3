#include "cli/reader_watch.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace vell::cli {
namespace {

void watch(int output, int stop) {
  pollfd watched[] = {{output, 0, 0}, {stop, 0, 0}};
  while (true) {
    if (poll(watched, 2, -1) < 0 && errno != EINTR) return;
    if (watched[1].revents != 0) return;
    if ((watched[0].revents & (POLLERR | POLLHUP)) != 0) _exit(ExitStatus::closedPipe);
    if (watched[0].revents != 0) return;  // a descriptor that cannot be watched
  }
}

}  // namespace

ReaderWatch::ReaderWatch(const Output& out) {
  int ends[2];
  if (pipe(ends) != 0)
    throw std::system_error(errno, std::generic_category(), "Cannot watch standard output");
  stopped_ = platform::Descriptor(ends[0]);
  stopWatching_ = platform::Descriptor(ends[1]);
  thread_ = std::thread(watch, out.descriptor(), stopped_.get());
}

ReaderWatch::~ReaderWatch() {
  stopWatching_ = platform::Descriptor();  // the thread sees its other end hang up
  thread_.join();
}

}  // namespace vell::cli
