#include "mcp/descriptor_flags.h"

#include <fcntl.h>

#include <cerrno>
#include <system_error>

namespace vell::mcp {

static int checked(int result) {
  if (result == -1) throw std::system_error(errno, std::generic_category());
  return result;
}

NonBlocking::NonBlocking(int descriptor)
    : descriptor_(descriptor), flags_(checked(::fcntl(descriptor, F_GETFL))) {
  checked(::fcntl(descriptor_, F_SETFL, flags_ | O_NONBLOCK));
}

NonBlocking::~NonBlocking() { ::fcntl(descriptor_, F_SETFL, flags_); }

int duplicate(int descriptor) { return checked(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0)); }

}  // namespace vell::mcp
