#pragma once

#include <optional>
#include <string>

namespace vell::platform {

/// The running executable's path, symbolic links possibly unresolved; none where the system does not tell.
std::optional<std::string> executablePath();

/// Asks the system to open the file with the application bundle, starting it where it does not run.
/// Returns when the application was asked, not when the file is open. Throws std::runtime_error that says
/// why the application could not be started. Both paths are absolute.
void openFileWithApplication(const std::string& file, const std::string& bundle);

}  // namespace vell::platform
