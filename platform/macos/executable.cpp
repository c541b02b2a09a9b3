#include "platform/executable.h"

#include <mach-o/dyld.h>

#include <cstdint>
#include <cstring>

namespace vell::platform {

std::optional<std::string> executablePath() {
  std::uint32_t size = 0;
  _NSGetExecutablePath(nullptr, &size);
  std::string path(size, '\0');
  if (_NSGetExecutablePath(path.data(), &size) != 0) return std::nullopt;
  path.resize(std::strlen(path.c_str()));
  return path;
}

}  // namespace vell::platform
