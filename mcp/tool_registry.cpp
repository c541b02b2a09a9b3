#include "mcp/tool_registry.h"

#include <algorithm>

namespace vell::mcp {

void ToolRegistry::add(const std::shared_ptr<Tool>& tool) {
  const ToolDefinition& definition = tool->definition();
  Entry entry{tool, ArgumentValidator(definition.inputSchema)};
  if (Entry* existing = find(definition.name)) {
    *existing = std::move(entry);
  } else {
    entries_.push_back(std::move(entry));
  }
  notice_.changed();
}

bool ToolRegistry::remove(std::string_view name) {
  const Entry* entry = find(name);
  if (!entry) return false;
  entries_.erase(entries_.begin() + (entry - entries_.data()));
  notice_.changed();
  return true;
}

ToolRegistry::Entry* ToolRegistry::find(std::string_view name) {
  const auto entry = std::find_if(entries_.begin(), entries_.end(),
                                  [name](const Entry& each) { return each.tool->definition().name == name; });
  return entry == entries_.end() ? nullptr : &*entry;
}

}  // namespace vell::mcp
