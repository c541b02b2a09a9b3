#include "cli/suggest.h"

#include <vector>

#include "text/edit_distance.h"

namespace vell::cli {

std::string didYouMean(std::string_view word, const Command& command) {
  std::vector<std::string_view> candidates;
  if (word.starts_with('-')) {
    for (const Option* option : namedOptions(command)) candidates.push_back(option->name);
  } else {
    for (const Command* next : command.subcommands) candidates.push_back(next->name);
  }
  const std::string_view meant = text::nearest(word, candidates);
  if (meant.empty()) return {};
  return " Did you mean '" + std::string(meant) + "'?";
}

}  // namespace vell::cli
