#include <algorithm>

#include "formats/format.h"
#include "text/lines.h"

namespace vell::formats {

void readTxt(std::string_view text, const ReadOptions& options, Outline& outline) {
  outline.setCreated(options.time);
  TreeBuilder builder(outline);
  text::Lines lines(checkedSource(text));
  while (lines.next()) {
    std::string_view line = lines.line();
    std::size_t depth = 0;
    while (depth < builder.maxDepth() && line.starts_with('\t')) {
      line.remove_prefix(1);
      ++depth;
    }
    builder.add(depth, {RowType::body, Text(std::string(line)), {}, {}, options.time, options.time});
  }
}

void writeTxt(const Outline&, std::span<const PlacedRow> rows, bool, std::string& out) {
  for (const PlacedRow& placed : rows) {
    out.append(placed.depth, '\t');
    const std::size_t from = out.size();
    out += placed.row->text().string();
    const auto isLineEnd = [](char c) { return c == '\n' || c == '\r'; };
    std::replace_if(out.begin() + static_cast<std::ptrdiff_t>(from), out.end(), isLineEnd, ' ');
    out += '\n';
  }
}

}  // namespace vell::formats
