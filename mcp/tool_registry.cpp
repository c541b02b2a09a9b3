#include "mcp/tool_registry.h"

#include <algorithm>

#include "text/utf8.h"

namespace vell::mcp {

namespace {

constexpr std::size_t longestName = 128;

bool isAllowed(std::string_view character) {
  static constexpr std::string_view allowed =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-.";
  return allowed.find(character) != std::string_view::npos;
}

std::vector<std::string_view> charactersOf(std::string_view text) {
  std::vector<std::string_view> characters;
  while (!text.empty()) {
    const std::size_t length = text::utf8Length(text);
    characters.push_back(text.substr(0, length ? length : 1));
    text.remove_prefix(characters.back().size());
  }
  return characters;
}

/// Each offending character once, in order of appearance.
std::string invalidCharacters(const std::vector<std::string_view>& characters) {
  std::string list;
  for (const std::string_view character : characters) {
    const std::string quoted = "\"" + std::string(character) + "\"";
    if (isAllowed(character) || list.find(quoted) != std::string::npos) continue;
    list += (list.empty() ? "" : ", ") + quoted;
  }
  return list;
}

bool startsOrEndsWith(std::string_view name, char character) {
  return name.front() == character || name.back() == character;
}

}  // namespace

std::vector<std::string> validateToolName(std::string_view name) {
  if (name.empty()) return {"Tool name cannot be empty"};
  std::vector<std::string> findings;
  const auto characters = charactersOf(name);
  if (characters.size() > longestName) {
    findings.push_back("Tool name exceeds maximum length of 128 characters (current: " +
                       std::to_string(characters.size()) + ")");
  }
  if (const std::string invalid = invalidCharacters(characters); !invalid.empty()) {
    findings.push_back("Tool name contains invalid characters: " + invalid);
    findings.emplace_back("Allowed characters are: A-Z, a-z, 0-9, underscore (_), dash (-), and dot (.)");
  }
  if (name.find(' ') != std::string_view::npos) {
    findings.emplace_back("Tool name contains spaces, which may cause parsing issues");
  }
  if (name.find(',') != std::string_view::npos) {
    findings.emplace_back("Tool name contains commas, which may cause parsing issues");
  }
  if (startsOrEndsWith(name, '-')) {
    findings.emplace_back(
        "Tool name starts or ends with a dash, which may cause parsing issues in some contexts");
  }
  if (startsOrEndsWith(name, '.')) {
    findings.emplace_back(
        "Tool name starts or ends with a dot, which may cause parsing issues in some contexts");
  }
  return findings;
}

void validateAndWarnToolName(std::string_view name, const Logger& logger) {
  const auto findings = validateToolName(name);
  if (findings.empty()) return;
  std::string warning = "Tool name validation warning for \"" + std::string(name) + "\":";
  for (const std::string& finding : findings) warning += "\n  - " + finding;
  logger.log(LogLevel::warning,
             warning +
                 "\nTool registration will proceed, but this may cause compatibility issues."
                 "\nConsider updating the tool name to conform to the MCP tool naming standard.");
}

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

Value ToolRegistry::list() const {
  Value::Array list;
  for (const Entry& entry : entries_) list.push_back(entry.tool->definition().toValue());
  return list;
}

}  // namespace vell::mcp
