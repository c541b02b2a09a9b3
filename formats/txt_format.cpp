#include <algorithm>

#include "formats/format.h"
#include "formats/line_update.h"

namespace vell::formats {
namespace {

/// Appends the row's plain text on one line.
void appendLine(std::string& out, const Row& row) {
  const auto from = static_cast<std::ptrdiff_t>(out.size());
  out += row.text().string();
  const auto isLineEnd = [](char c) { return c == '\n' || c == '\r'; };
  std::replace_if(out.begin() + from, out.end(), isLineEnd, ' ');
}

std::string_view lineEndOf(std::string_view text) {
  const std::size_t at = text.find_first_of("\r\n");
  if (at == text.npos) return "\n";
  return text.substr(at, text.substr(at, 2) == "\r\n" ? 2 : 1);
}

}  // namespace

void readTxt(std::string_view text, const ReadOptions& options, Outline& outline) {
  outline.setCreated(options.time);
  TreeBuilder builder(outline, options.eachRow);
  const std::string_view checked = checkedSource(text);
  for (std::size_t at = text.size() - checked.size(); at < text.size();) {
    const std::size_t end = std::min(text.find_first_of("\r\n", at), text.size());
    std::size_t depth = 0;
    while (at < end && text[at] == '\t' && depth < builder.maxDepth()) ++at, ++depth;
    const std::string line(text.substr(at, end - at));
    builder.add(depth, {RowType::body, Text(line), {}, {}, options.time, options.time},
                {.begin = at, .end = end});
    at = end + (text.substr(end, 2) == "\r\n" ? 2 : 1);
  }
}

void writeTxt(const Outline&, std::span<const PlacedRow> rows, bool, std::string& out) {
  for (const PlacedRow& placed : rows) {
    out.append(placed.depth, '\t');
    appendLine(out, *placed.row);
    out += '\n';
  }
}

FileText updateTxt(const Outline& outline) {
  const document::Source& source = *outline.source();
  const auto render = [](const ChangedLine& line, std::string& out) { appendLine(out, line.row); };
  const std::string head(LineSource(source).head());
  return FileText(updateLines(outline, head, lineEndOf(source.text()), Times::dropped, render));
}

}  // namespace vell::formats
