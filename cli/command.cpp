#include "cli/command.h"

namespace vell::cli {
namespace {

void append(std::vector<TreeEntry>& entries, const Command& command, const std::string& path) {
  entries.push_back({&command, path});
  for (const Command* next : command.subcommands)
    append(entries, *next, path + " " + std::string(next->name));
}

}  // namespace

std::vector<const Option*> namedOptions(const Command& command) {
  std::vector<const Option*> named;
  for (const Option* option : command.options) {
    if (!option->positional()) named.push_back(option);
  }
  named.insert(named.end(), {&versionOption, &helpOption});
  return named;
}

const Option* findOption(const Command& command, std::string_view name) {
  for (const Option* option : namedOptions(command)) {
    if (option->name == name || option->shortName == name) return option;
  }
  return nullptr;
}

const Command* findSubcommand(const Command& command, std::string_view name) {
  for (const Command* next : command.subcommands) {
    if (next->name == name) return next;
  }
  return nullptr;
}

std::vector<TreeEntry> wholeTree(const Command& root) {
  std::vector<TreeEntry> entries;
  append(entries, root, std::string(root.name));
  return entries;
}

}  // namespace vell::cli
