#include "cli/write_all.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "cli/console.h"

namespace vell::cli {

static void waitUntilWritable(int descriptor) {
  pollfd waiting{descriptor, POLLOUT, 0};
  poll(&waiting, 1, -1);
}

ssize_t writeSome(int descriptor, std::string_view bytes) {
  while (true) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written >= 0) return written;
    if (errno == EAGAIN || errno == EWOULDBLOCK) {
      waitUntilWritable(descriptor);
    } else if (errno != EINTR) {
      return -1;
    }
  }
}

void writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = writeSome(descriptor, bytes);
    if (written < 0 && errno == EPIPE) throw ClosedOutput();
    if (written < 0)
      throw std::system_error(errno, std::generic_category(), "Cannot write to standard output");
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace vell::cli
