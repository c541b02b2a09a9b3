#include "formats/document_header.h"
#include "formats/inline_text.h"
#include "formats/marked_line.h"
#include "formats/vell_format.h"

namespace vell::formats {
namespace {

class VellWriter {
 public:
  VellWriter(std::string& out, Timestamp created) : out_(out), created_(created) {}

  void writeRow(const PlacedRow& placed);

 private:
  std::string_view mark(const Row& row) const;
  void writeFenced(const Row& row, std::uint32_t depth);
  void writeBody(const Row& row);
  void writeTrailer(const Row& row, bool leadIsMarked, bool tellsType);

  std::string& out_;
  Timestamp created_;
  std::size_t contentFrom_ = 0;
};

void VellWriter::writeRow(const PlacedRow& placed) {
  const Row& row = *placed.row;
  out_.append(placed.depth, '\t');
  contentFrom_ = out_.size();
  if (row.type() == RowType::code && canBeFenced(row)) return writeFenced(row, placed.depth);
  const std::string_view mark = this->mark(row);
  out_ += mark;
  if (mark.empty()) {
    writeBody(row);
  } else if (!row.text().empty()) {
    out_ += ' ';
    appendInline(out_, row.text());
  }
  const bool tellsType = mark.empty() && row.type() != RowType::body;
  const std::string* lead = leadValue(row);
  writeTrailer(row, row.type() == RowType::task && lead && *lead == "true", tellsType);
  if (out_.size() == contentFrom_) out_ += emptyVellRow;
  out_ += '\n';
}

/// Empty where the row is written like a body row.
std::string_view VellWriter::mark(const Row& row) const {
  const std::string* done = row.attributes().find("done");
  switch (row.type()) {
    case RowType::heading:
      return "#";
    case RowType::task:
      return done && *done == "true" ? "[x]" : "[ ]";
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

void VellWriter::writeBody(const Row& row) {
  appendInline(out_, row.text());
  const std::string_view content = std::string_view(out_).substr(contentFrom_);
  if (openingFence(content) == 0 && vellMark(content).type == RowType::body) return;
  const std::size_t ordinal = ordinalLength(content);
  out_.insert(contentFrom_ + (ordinal > 0 ? ordinal - 1 : 0), 1, '\\');
}

void VellWriter::writeFenced(const Row& row, std::uint32_t depth) {
  const std::string_view text = row.text().string();
  const std::string fence = fenceFor(text);
  const std::string* language = leadValue(row);
  const bool leadIsMarked = language && isFenceInfo(*language);
  out_ += fence;
  if (leadIsMarked) out_.append(" ").append(*language);
  writeTrailer(row, leadIsMarked, false);
  out_ += '\n';
  for (std::size_t at = 0; at <= text.size() && !text.empty();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    if (end > at) out_.append(depth, '\t').append(text, at, end - at);
    out_ += '\n';
    at = end + 1;
  }
  out_.append(depth, '\t').append(fence) += '\n';
}

void VellWriter::writeTrailer(const Row& row, bool leadIsMarked, bool tellsType) {
  RowTrailer trailer = trailerOf(row, leadIsMarked);
  if (tellsType) trailer.type = row.type();
  if (row.created() != created_) trailer.created = document::formatTimestamp(row.created());
  if (row.modified() != row.created()) trailer.modified = document::formatTimestamp(row.modified());
  if (trailer.empty()) return;
  if (out_.size() > contentFrom_) out_ += ' ';
  appendTrailer(out_, Times::kept, trailer);
}

}  // namespace

void writeVell(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out) {
  if (!rowsOnly) {
    out += "vell 1\n";
    DocumentHeader(true).write(out, outline);
    out += '\n';
  }
  VellWriter writer(out, outline.created());
  for (const PlacedRow& row : rows) writer.writeRow(row);
}

}  // namespace vell::formats
