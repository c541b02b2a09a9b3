#include "platform/descriptor.h"

#include <unistd.h>

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

}  // namespace vell::platform
