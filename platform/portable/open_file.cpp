#include "platform/open_file.h"

#include "platform/portable/start_detached.h"
#include "platform/property_list.h"

#include <stdexcept>

namespace vell::platform {

void openFileWithApplication(const std::string& file, const std::string& bundle) {
  const std::string list = bundle + "/Contents/Info.plist";
  const auto info = readPropertyListStrings(list);
  if (!info) throw std::runtime_error("cannot read " + list);
  const auto executable = info->find("CFBundleExecutable");
  if (executable == info->end()) throw std::runtime_error(list + " names no CFBundleExecutable");
  startDetached(bundle + "/Contents/MacOS/" + executable->second, file);
}

}  // namespace vell::platform
