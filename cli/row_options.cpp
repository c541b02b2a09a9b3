#include "cli/row_options.h"

#include "json/error.h"
#include "json/rewrite.h"

namespace vell::cli {
namespace {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n\v\f";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// The styled runs that the text is a JSON array of; none for other texts.
std::optional<ipc::StyledRuns> styledRuns(std::string_view text) {
  if (!text.starts_with('[')) return std::nullopt;
  try {
    return ipc::StyledRuns{json::rewrite(text, json::Layout::compact)};
  } catch (const json::ParseError&) {
    return std::nullopt;
  }
}

}  // namespace

std::vector<std::string> rowsOrSelection(const Arguments& arguments) {
  const auto& rows = arguments.values(rowsArgument);
  return rows.empty() ? std::vector<std::string>{"@selection"} : rows;
}

std::optional<Attributes> parseAttrs(const std::vector<std::string>& set,
                                     const std::vector<std::string>& unset) {
  if (set.empty() && unset.empty()) return std::nullopt;
  Attributes attributes;
  for (const std::string& pair : set) {
    const std::size_t equals = pair.find('=');
    if (equals == std::string::npos) throw UsageError("Attribute must be key=value, got: '" + pair + "'");
    attributes[pair.substr(0, equals)] = pair.substr(equals + 1);
  }
  for (const std::string& key : unset) attributes[key] = std::nullopt;
  return attributes;
}

ipc::RowText parseTextInput(const std::string& value) {
  if (auto runs = styledRuns(trimmed(value))) return std::move(*runs);
  return value;
}

}  // namespace vell::cli
