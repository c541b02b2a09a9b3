#pragma once

#include "cli/command.h"

namespace vell::cli {

/// The root of the tree.
extern const Command vellCommand;

// Its groups, one source file each; vell.cpp puts them in order.
extern const Command openCommand;
extern const Command closeCommand;
extern const Command getCommand;
extern const Command observeCommand;
extern const Command createCommand;
extern const Command updateCommand;
extern const Command moveCommand;
extern const Command deleteCommand;
extern const Command evaluateCommand;
extern const Command mcpCommand;

}  // namespace vell::cli
