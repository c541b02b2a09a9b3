#include "mcp/phrases.h"

namespace vell::mcp {

std::string listOf(const std::vector<std::string>& texts, const std::string& conjunction) {
  std::string list;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const bool last = i + 1 == texts.size();
    list += (i == 0 ? "" : last ? " " + conjunction + " " : ", ") + texts[i];
  }
  return list;
}

}  // namespace vell::mcp
