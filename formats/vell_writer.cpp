#include "formats/document_header.h"
#include "formats/inline_markdown.h"
#include "formats/marked_line.h"
#include "formats/vell_format.h"

namespace vell::formats {
namespace {

/// Stands for a body row without text, as blank lines are ignored.
constexpr std::string_view emptyRow = "\\";

bool isDone(const Row& row) {
  const std::string* done = row.attributes().find("done");
  return done && *done == "true";
}

/// True if the mark or the info string tells the row's first attribute.
bool markTellsAttribute(const Row& row) {
  const std::string* value = markAttributeValue(row);
  if (!value) return false;
  if (row.type() == RowType::task) return *value == "true";
  return row.type() == RowType::code && canBeFenced(row) && isFenceInfo(*value);
}

}  // namespace

void escapeMark(std::string& out, std::size_t from) {
  const std::string_view content = std::string_view(out).substr(from);
  if (takeApart(content).mark.empty()) return;
  const std::size_t ordinal = ordinalLength(content);
  out.insert(from + (ordinal > 0 ? ordinal - 1 : 0), 1, '\\');
}

std::string_view VellWriter::mark(const Row& row) const {
  switch (row.type()) {
    case RowType::heading:
      return "#";
    case RowType::task:
      return isDone(row) ? "[x]" : "[ ]";
    case RowType::note:
      return "//";
    case RowType::quote:
      return ">";
    case RowType::ordered:
      return "1.";
    case RowType::unordered:
      return "-";
    case RowType::hr:
      return row.text().empty() ? "---" : "";
    default:
      return "";
  }
}

RowTrailer VellWriter::trailer(const Row& row, bool typeIsMarked) const {
  RowTrailer trailer = trailerOf(row, markTellsAttribute(row));
  if (!typeIsMarked && row.type() != RowType::body) trailer.type = row.type();
  if (times_ == Times::dropped) return trailer;
  if (row.created() != created_) trailer.created = document::formatTimestamp(row.created());
  if (row.modified() != row.created()) trailer.modified = document::formatTimestamp(row.modified());
  return trailer;
}

void VellWriter::write(const Row& row, std::size_t depth, std::string& out) const {
  const std::size_t from = out.size();
  const bool isFenced = row.type() == RowType::code && canBeFenced(row);
  const std::string fence = isFenced ? fenceFor(row.text().string()) : "";
  const std::string_view mark = isFenced ? fence : this->mark(row);
  out += mark;
  if (isFenced) {
    if (markTellsAttribute(row)) out.append(" ").append(*markAttributeValue(row));
  } else {
    if (!mark.empty() && !row.text().empty()) out += ' ';
    appendInline(out, row.text());
    if (mark.empty()) escapeMark(out, from);
  }
  const RowTrailer trailer = this->trailer(row, !mark.empty());
  if (!trailer.empty() && out.size() > from) out += ' ';
  appendTrailer(out, Times::kept, trailer);
  if (out.size() == from) out += emptyRow;
  if (!isFenced) return;
  out += '\n';
  appendFenced(out, row.text().string(), fence, depth);
  out.pop_back();
}

void writeVell(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out) {
  if (!rowsOnly) {
    out += "vell 1\n";
    DocumentHeader(HeaderKind::vell).write(out, outline);
    out += '\n';
  }
  const VellWriter writer(outline.created(), Times::kept);
  for (const PlacedRow& placed : rows) {
    out.append(placed.depth, '\t');
    writer.write(*placed.row, placed.depth, out);
    out += '\n';
  }
}

}  // namespace vell::formats
