#pragma once

#include <string>
#include <vector>

#include "cli/command.h"

namespace vell::cli {

/// A command and the words that lead to it.
struct TreeEntry {
  const Command* command;
  std::string path;
};

/// The command and everything below it, each before its subcommands.
std::vector<TreeEntry> wholeTree(const Command& root);

}  // namespace vell::cli
