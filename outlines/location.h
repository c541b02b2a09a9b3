#pragma once

#include <optional>
#include <string>

#include "platform/process.h"

namespace vell::outlines {

/// The path made absolute against the current directory, without "." and ".." components or a "/" at its end.
/// Throws OpenError where the current directory is gone.
std::string absolutize(const std::string& path);

/// The application bundle that contains the executable. Throws OpenError where there is none.
std::string hostVellAppURL(const std::optional<std::string>& executable = platform::executablePath());

}  // namespace vell::outlines
