#pragma once

#include <span>
#include <string_view>

#include "headless/editing/transaction.h"

namespace vell::headless {

/// A named action on the editor of an outline.
struct Command {
  std::string_view id;
  /// False where it declined to act.
  bool (*perform)(Transaction&);
};

/// Every command, in the order of their ids.
std::span<const Command> commands();
/// Null where there is none of that id.
const Command* findCommand(std::string_view id);

}  // namespace vell::headless
