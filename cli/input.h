#pragma once

#include <string>

#include "cli/console.h"

namespace vell::cli {

/// The whole text of a file, or of standard input for "-" (announced on standard error when a person types
/// it). Throws when it cannot be read or is not UTF-8.
std::string readInput(const std::string& path, Console& console);

}  // namespace vell::cli
