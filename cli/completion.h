#pragma once

#include <string>
#include <string_view>

#include "cli/command.h"

namespace vell::cli {

inline constexpr std::string_view completionShells[] = {"bash", "zsh", "fish"};

/// The script that teaches one of these shells the whole tree.
std::string completionScript(const Command& root, std::string_view shell);

}  // namespace vell::cli
