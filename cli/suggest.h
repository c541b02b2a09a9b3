#pragma once

#include <string>
#include <string_view>

#include "cli/command.h"

namespace vell::cli {

/// " Did you mean '…'?" for a word that is no subcommand or option of the command; empty when nothing is
/// near.
std::string didYouMean(std::string_view word, const Command& command);

}  // namespace vell::cli
