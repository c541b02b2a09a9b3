#include "tools/answer_limit.h"

#include <cstddef>
#include <cstdio>
#include <vector>

#include "json/escapes.h"

namespace vell::tools {

namespace {

constexpr std::size_t mostBytes = 8'000'000;

/// What the text takes in a message, where it is a string with escapes.
std::size_t sizeInMessage(std::string_view text) { return json::quoted(text).size(); }

bool fits(std::string_view text) {
  constexpr std::size_t longestEscape = 6;
  return text.size() < mostBytes / longestEscape || sizeInMessage(text) <= mostBytes;
}

std::string inMegabytes(std::size_t bytes) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f MB", static_cast<double>(bytes) / 1e6);
  return text;
}

/// The rows of an outline, of a list or of what an update returns, with those below them.
std::size_t countRows(const json::Node& result) {
  std::size_t count = 0;
  std::vector<json::Node> lists{result.find("rows").value_or(result)};
  while (!lists.empty()) {
    const json::Node list = lists.back();
    lists.pop_back();
    for (const json::Node& element : list.elements()) {
      const json::Node row = element.find("row").value_or(element);
      if (!row.find("type") || !row.find("text")) continue;
      ++count;
      if (const auto children = row.find("children")) lists.push_back(*children);
    }
  }
  return count;
}

}  // namespace

std::optional<std::string> refusal(std::string_view text, const ipc::Answer& answer) {
  if (fits(text)) return std::nullopt;
  const std::size_t rows = countRows(answer.result());
  return "Vell has done what was asked, but its answer is too large to be sent: " +
         inMegabytes(sizeInMessage(text)) + (rows > 0 ? ", " + std::to_string(rows) + " rows" : "") +
         "; at most 8 MB can be. Read less of an outline with vell_get_outline: name rows in `refs`, such as "
         "`//heading` or, for the first 200 rows, `//*[0:200]`; `output: markdown` is shorter than JSON.";
}

std::string shortened(std::string text) {
  constexpr std::size_t start = 1000;
  if (fits(text)) return text;
  return text.substr(0, start) + "... (" + inMegabytes(sizeInMessage(text)) + ")";
}

}  // namespace vell::tools
