#pragma once

#include <string_view>
#include <vector>

#include "headless/editing/transaction.h"

namespace vell::headless {

/// A named action on the editor of an outline.
struct Command {
  std::string_view id;
  /// False if there was nothing to do.
  bool (*perform)(Transaction&);
};

/// Every command, ordered by id.
const std::vector<Command>& commands();
/// Null where there is none of that id.
const Command* findCommand(std::string_view id);

// The groups, one file each.

std::vector<Command> foldCommands();
std::vector<Command> formatCommands();
std::vector<Command> moveCommands();
std::vector<Command> rowCommands();
std::vector<Command> selectionCommands();

}  // namespace vell::headless
