#pragma once

#include <optional>

#include "cli/command.h"
#include "cli/completion_values.h"

namespace vell::cli {

/// What may be typed as the last of the words that follow the program's name; none where it is a file's path.
std::optional<Candidates> candidatesFor(const Command& root, const ArgumentList& words);

}  // namespace vell::cli
