#include "outlines/version.h"

#include "outlines/location.h"
#include "outlines/open_error.h"
#include "platform/property_list.h"

namespace vell::outlines {

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
