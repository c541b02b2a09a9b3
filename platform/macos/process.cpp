#include "platform/process.h"

#include <libproc.h>
#include <mach-o/dyld.h>

#include <cstdint>
#include <cstring>

#include "platform/property_list.h"
#include "platform/service.h"

namespace vell::platform {

std::optional<std::string> executablePath() {
  std::uint32_t size = 0;
  _NSGetExecutablePath(nullptr, &size);
  std::string path(size, '\0');
  if (_NSGetExecutablePath(path.data(), &size) != 0) return std::nullopt;
  path.resize(std::strlen(path.c_str()));
  return path;
}

std::size_t residentBytes(pid_t process) {
  rusage_info_v2 usage{};
  if (proc_pid_rusage(process, RUSAGE_INFO_V2, reinterpret_cast<rusage_info_t*>(&usage)) != 0) return 0;
  return usage.ri_phys_footprint;
}

std::string startCommand() { return {}; }

/// The headless application takes files as arguments and not from the system's open requests.
static bool takesArguments(const std::string& bundle) {
  const auto info = readPropertyListStrings(bundle + "/Contents/Info.plist");
  return info && info->contains("VellHeadless");
}

void openFileWithApplication(const std::string& file, const std::string& bundle, Seconds limit) {
  if (takesArguments(bundle)) return startBundleWithFile(file, bundle);
  openFileThroughWorkspace(file, bundle, limit);
}

ServiceSetup serviceSetup(const Service& service) { return launchdSetup(service); }

}  // namespace vell::platform
