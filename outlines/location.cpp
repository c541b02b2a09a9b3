#include "outlines/location.h"

#include <filesystem>

#include "platform/property_list.h"

namespace vell::outlines {

namespace fs = std::filesystem;

std::string absolutize(const std::string& path) {
  // The system would take what stands before it for the path.
  if (path.find('\0') != std::string::npos) throw OpenError("A path holds no NUL character");
  std::error_code error;
  const fs::path absolute = fs::path(path).is_absolute() ? fs::path(path) : fs::current_path(error) / path;
  if (error) throw OpenError("Cannot determine the current directory: " + error.message());
  const fs::path normal = absolute.lexically_normal();
  return normal.has_filename() ? normal.string() : normal.parent_path().string();
}

std::string hostVellAppURL(const std::optional<std::string>& executable) {
  if (!executable) throw OpenError("Cannot locate vell CLI executable path");
  std::error_code error;
  const fs::path canonical = fs::canonical(*executable, error);
  const fs::path resolved = error ? fs::path(*executable) : canonical;
  for (fs::path place = resolved.parent_path(); place.has_relative_path(); place = place.parent_path()) {
    if (place.extension() == ".app") return place.string();
  }
  throw OpenError("vell CLI is not running inside a Vell.app bundle (executable: " + resolved.string() + ")");
}

std::string bundleVersion(const std::string& bundle) {
  const auto info = platform::readPropertyListStrings(bundle + "/Contents/Info.plist");
  if (!info) return "dev";
  const auto version = info->find("CFBundleShortVersionString");
  if (version == info->end()) return "dev";
  const auto build = info->find("CFBundleVersion");
  return build == info->end() ? version->second : version->second + " (" + build->second + ")";
}

static std::string readVersion() {
  try {
    return bundleVersion(hostVellAppURL());
  } catch (const OpenError&) {
    return "dev";
  }
}

const std::string& cliVersion() {
  static const std::string version = readVersion();
  return version;
}

}  // namespace vell::outlines
