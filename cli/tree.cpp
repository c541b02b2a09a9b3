#include "cli/tree.h"

namespace vell::cli {
namespace {

void append(std::vector<TreeEntry>& entries, const Command& command, const std::string& path) {
  entries.push_back({&command, path});
  for (const Command* next : command.subcommands)
    append(entries, *next, path + " " + std::string(next->name));
}

}  // namespace

std::vector<TreeEntry> wholeTree(const Command& root) {
  std::vector<TreeEntry> entries;
  append(entries, root, std::string(root.name));
  return entries;
}

}  // namespace vell::cli
