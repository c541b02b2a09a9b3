#include "platform/descriptor.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace vell::platform {

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  std::swap(fd_, other.fd_);
  return *this;
}

Descriptor::~Descriptor() {
  if (fd_ >= 0) ::close(fd_);
}

int Descriptor::release() { return std::exchange(fd_, -1); }

static void waitUntilWritable(int descriptor) {
  pollfd waiting{descriptor, POLLOUT, 0};
  ::poll(&waiting, 1, -1);
}

ssize_t writeSome(int descriptor, const char* data, std::size_t size) {
  for (;;) {
    const ssize_t count = ::write(descriptor, data, size);
    if (count >= 0) return count;
    if (errno == EAGAIN || errno == EWOULDBLOCK) {
      waitUntilWritable(descriptor);
    } else if (errno != EINTR) {
      return -1;
    }
  }
}

bool writeAll(int descriptor, std::string_view bytes, ssize_t (*write)(int, const char*, std::size_t)) {
  while (!bytes.empty()) {
    const ssize_t count = write(descriptor, bytes.data(), bytes.size());
    if (count < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool waitUntilReadable(int descriptor, std::chrono::milliseconds limit) {
  pollfd waiting{descriptor, POLLIN, 0};
  return limit.count() > 0 && ::poll(&waiting, 1, static_cast<int>(limit.count())) != 0;
}

bool readerIsGone(int descriptor) {
  pollfd asked{descriptor, POLLOUT, 0};
  return ::poll(&asked, 1, 0) > 0 && (asked.revents & (POLLHUP | POLLERR)) != 0;
}

bool waitUntilReaderIsGone(int output, int stop) {
  // macOS reports nothing at all for a descriptor that is asked for no event. Urgent data never comes.
  pollfd watched[] = {{output, POLLRDBAND, 0}, {stop, POLLIN, 0}};
  int ready = 0;
  while (ready == 0 || (ready < 0 && errno == EINTR)) ready = ::poll(watched, 2, -1);
  return ready > 0 && watched[1].revents == 0 && readerIsGone(output);
}

}  // namespace vell::platform
