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

}  // namespace vell::platform
