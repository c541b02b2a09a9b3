#include "cli/console.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "cli/errors.h"

namespace vell::cli {
namespace {

/// Gathers small pieces; larger ones have been gathered before.
constexpr std::size_t bufferSize = 32 * 1024;

void waitUntilWritable(int descriptor) {
  pollfd waiting{descriptor, POLLOUT, 0};
  poll(&waiting, 1, -1);
}

/// One write, waiting where the descriptor does not block; how many bytes went, or -1.
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

}  // namespace

void Output::write(std::string_view piece) {
  if (buffer_.size() + piece.size() > bufferSize) flush();
  if (piece.size() > bufferSize) return writeThrough(piece);
  buffer_.append(piece);
}

void Output::flush() {
  writeThrough(buffer_);
  buffer_.clear();
}

void Output::writeThrough(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = writeSome(descriptor_, bytes);
    if (written < 0 && errno == EPIPE) throw ClosedOutput();
    if (written < 0)
      throw std::system_error(errno, std::generic_category(), "Cannot write to standard output");
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void Console::say(std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = writeSome(error_, text);
    if (written <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

void fillClosedDescriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) != -1) continue;
    // The lowest free number is taken, which is this one.
    if (::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY) < 0) return;
  }
}

}  // namespace vell::cli
