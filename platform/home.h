#pragma once

#include <string>

namespace vell::platform {

/// The user's home directory: `$HOME` when set and absolute, else the user database's entry.
std::string homeDirectory();

}  // namespace vell::platform
