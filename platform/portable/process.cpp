#include "platform/process.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/service.h"

namespace vell::platform {

std::optional<std::string> executablePath() {
  std::error_code error;
  const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return std::nullopt;
  return path.string();
}

std::size_t residentBytes(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/statm");
  std::size_t total = 0;
  std::size_t resident = 0;
  file >> total >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

std::string startCommand() { return "vell-headless ~/notes"; }

void openFileWithApplication(const std::string& file, const std::string& bundle, Seconds /*limit*/) {
  startBundleWithFile(file, bundle);
}

ServiceSetup serviceSetup(const Service& service) { return systemdSetup(service); }

}  // namespace vell::platform
