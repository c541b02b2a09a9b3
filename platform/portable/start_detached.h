#pragma once

#include <string>

namespace vell::platform {

/// Starts the executable with one argument in a session of its own, without this process's descriptors,
/// signal settings or terminal; nobody has to wait for it. Throws std::runtime_error where it does not start.
void startDetached(const std::string& executable, const std::string& argument);

}  // namespace vell::platform
