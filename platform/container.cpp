#include "platform/container.h"

#include "platform/home.h"

namespace vell::platform {

std::string containerDirectory() {
  return homeDirectory() + "/Library/Containers/" + bundleIdentifier + "/Data";
}

std::string applicationSocketPath() { return containerDirectory() + "/cli.sock"; }

}  // namespace vell::platform
