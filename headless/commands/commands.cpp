#include "headless/commands/commands.h"

#include <algorithm>

namespace vell::headless {

const std::vector<Command>& commands() {
  static const std::vector<Command> sorted = [] {
    std::vector<Command> all;
    for (const auto group : {foldCommands, formatCommands, moveCommands, rowCommands, selectionCommands}) {
      const auto some = group();
      all.insert(all.end(), some.begin(), some.end());
    }
    std::sort(all.begin(), all.end(), [](const Command& a, const Command& b) { return a.id < b.id; });
    return all;
  }();
  return sorted;
}

const Command* findCommand(std::string_view id) {
  const auto& all = commands();
  const auto found = std::find_if(all.begin(), all.end(), [&](const Command& each) { return each.id == id; });
  return found != all.end() ? &*found : nullptr;
}

}  // namespace vell::headless
