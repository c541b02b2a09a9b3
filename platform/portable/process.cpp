#include "platform/process.h"

#include <filesystem>

#include "platform/start_bundle.h"

namespace vell::platform {

std::optional<std::string> executablePath() {
  std::error_code error;
  const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return std::nullopt;
  return path.string();
}

void openFileWithApplication(const std::string& file, const std::string& bundle, Seconds /*limit*/) {
  startBundleWithFile(file, bundle);
}

}  // namespace vell::platform
