#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/row_refs.h"

namespace vell::cli {

enum class Action { run, help, version };

/// Which command a command line names and what it asks of it.
struct Selection {
  const Command* command;
  /// The words that lead to the command: "vell get outline".
  std::string path;
  Action action = Action::run;
  /// What the command line holds besides these words.
  ArgumentList rest;
  /// A word that stands where a subcommand belongs and is none.
  std::optional<std::string> unknown;
};

/// Follows the command names of a command line down from `root`. Options may stand between them;
/// a name behind a plain argument, or as an option's value, is not a command.
Selection select(const Command& root, const ArgumentList& arguments);

}  // namespace vell::cli
