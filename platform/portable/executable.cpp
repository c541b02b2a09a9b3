#include "platform/executable.h"

#include <filesystem>

namespace vell::platform {

std::optional<std::string> executablePath() {
  std::error_code error;
  const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return std::nullopt;
  return path.string();
}

}  // namespace vell::platform
