#pragma once

#include <optional>
#include <string>

namespace vell::platform {

/// The running executable's path, symbolic links possibly unresolved; none where the system does not tell.
std::optional<std::string> executablePath();

}  // namespace vell::platform
