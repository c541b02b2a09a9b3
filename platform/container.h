#pragma once

#include <string>

namespace vell::platform {

/// The identifier under which the Vell application is registered with the system.
inline constexpr const char* bundleIdentifier = "app.vell.Vell";

/// The user's home directory: `$HOME` when set and absolute, else what the user database says.
std::string homeDirectory();

/// The application's container directory: <home>/Library/Containers/<bundle identifier>/Data.
std::string containerDirectory();

/// The socket that the running application serves, `cli.sock` in its container.
std::string applicationSocketPath();

}  // namespace vell::platform
