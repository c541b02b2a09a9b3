#pragma once

#include <string>

#include "cli/command.h"

namespace vell::cli {

inline constexpr std::string_view completionShells[] = {"bash", "zsh", "fish"};

inline constexpr Option completionOption{
    .name = "--generate-completion-script",
    .value = "shell",
    .help = "Print a completion script: bash, zsh or fish.",
    .choices = completionShells,
};

/// The script that teaches a shell the whole tree.
std::string bashCompletion(const Command& root);
std::string zshCompletion(const Command& root);
std::string fishCompletion(const Command& root);

/// The root without a subcommand: a completion script where one is asked for, else its help.
void runRoot(const Arguments& arguments, Console& console);

}  // namespace vell::cli
