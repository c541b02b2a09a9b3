#include "platform/container.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace vell::platform {

std::string homeDirectory() {
  const char* home = std::getenv("HOME");
  if (home != nullptr && home[0] == '/') return home;
  const passwd* user = getpwuid(getuid());
  return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "/";
}

std::string containerDirectory() {
  return homeDirectory() + "/Library/Containers/" + bundleIdentifier + "/Data";
}

std::string applicationSocketPath() { return containerDirectory() + "/cli.sock"; }

}  // namespace vell::platform
