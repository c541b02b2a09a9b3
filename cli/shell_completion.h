#pragma once

#include <string_view>

#include "cli/command.h"
#include "cli/console.h"
#include "cli/shell_words.h"

namespace vell::cli {

/// The script that makes one of these shells ask `vell` for what may be typed. It knows no command and no
/// option.
std::string_view completionScript(std::string_view shell);

/// In front of what such a script asks with; no help mentions it.
inline constexpr std::string_view completeOption = "--complete";

/// Answers such a script, which gives the shell's name and the command line up to the cursor as typed; bash
/// also the end of it that is going to be replaced, and COMP_TYPE. Writes what may stand there, a line each,
/// and returns 0; returns 1, having written nothing, where the shell is to complete the names of files.
int complete(const Command& root, const ArgumentList& question, Console& console);

}  // namespace vell::cli
