#pragma once

#include <span>
#include <string>
#include <string_view>

#include "cli/command.h"

namespace vell::cli {

/// The candidate that a misspelt word most likely meant; empty when none is near.
std::string_view nearest(std::string_view word, std::span<const std::string_view> candidates);

/// " Did you mean '…'?" for a word that is no subcommand or option of the command; empty when nothing is
/// near.
std::string didYouMean(std::string_view word, const Command& command);

}  // namespace vell::cli
