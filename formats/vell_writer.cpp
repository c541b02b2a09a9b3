#include <array>

#include "formats/document_header.h"
#include "formats/format.h"
#include "formats/inline_markdown.h"
#include "formats/marked_line.h"
#include "text/lines.h"

namespace vell::formats {
namespace {

/// Stands for a body row without text, as blank lines are ignored.
constexpr std::string_view emptyRow = "\\";

/// A row's mark and what stands behind it.
struct MarkedText {
  RowType type = RowType::body;
  bool done = false;
  std::string_view text;
};

struct Mark {
  std::string_view mark;
  RowType type;
  bool done;
};

constexpr std::array<Mark, 6> marks = {{{"#", RowType::heading, false},
                                        {"[ ]", RowType::task, false},
                                        {"[x]", RowType::task, true},
                                        {"-", RowType::unordered, false},
                                        {">", RowType::quote, false},
                                        {"//", RowType::note, false}}};

/// What follows a mark of that length; none unless a blank or nothing does.
std::optional<std::string_view> behind(std::string_view line, std::size_t length) {
  if (line.size() > length && !isBlank(line[length])) return std::nullopt;
  return trim(line.substr(length));
}

MarkedText markedText(std::string_view line) {
  if (line == emptyRow) return {};
  if (line == "---") return {RowType::hr, false, {}};
  for (const Mark& entry : marks) {
    if (!line.starts_with(entry.mark)) continue;
    if (const auto text = behind(line, entry.mark.size())) return {entry.type, entry.done, *text};
  }
  const std::size_t ordinal = ordinalLength(line);
  if (ordinal > 0) {
    if (const auto text = behind(line, ordinal)) return {RowType::ordered, false, *text};
  }
  return {RowType::body, false, line};
}

class VellReader {
 public:
  VellReader(std::string_view text, const ReadOptions& options, Outline& outline)
      : lines_(text), time_(options.time), outline_(outline), builder_(outline) {}

  void read() {
    outline_.setCreated(time_);
    readHeader();
    while (lines_.next()) {
      if (!trim(lines_.line()).empty()) readRow();
    }
  }

 private:
  void readHeader();
  void readRow();
  void readCode(RowContent& row, std::string_view line, std::size_t depth);
  void take(RowContent& row, RowTrailer trailer);
  Timestamp time(const std::string& text, Timestamp otherwise);
  [[noreturn]] void fail(const std::string& fault) {
    throw FormatError(fault, lines_.number(), lines_.offset());
  }

  text::Lines lines_;
  Timestamp time_;
  Outline& outline_;
  TreeBuilder builder_;
};

void VellReader::readHeader() {
  if (!lines_.next()) return;
  const std::string_view first = trimEnd(lines_.line());
  const bool isHeader = first.starts_with("vell ") && first.find_first_not_of("0123456789", 5) == first.npos;
  if (!isHeader) return lines_.unread();
  if (first != "vell 1") fail("this file is in a newer form of the format (\"" + std::string(first) + "\")");
  DocumentHeader header(true);
  while (lines_.next() && !trim(lines_.line()).empty()) {
    if (!header.readLine(lines_.line())) fail("expected \"key: value\" or an empty line to end the header");
  }
  if (!header.finish(outline_)) fail("\"created\" in the header is not a time like 2026-01-31T12:00:00Z");
  time_ = outline_.created();
}

void VellReader::readRow() {
  std::string_view line = trimEnd(lines_.line());
  const std::size_t depth = line.find_first_not_of('\t');
  if (depth > builder_.maxDepth()) {
    fail("indented by " + std::to_string(depth) + " tabs, but the row before allows at most " +
         std::to_string(builder_.maxDepth()));
  }
  line.remove_prefix(depth);
  RowTrailer trailer;
  takeTrailer(line, Times::kept, trailer);
  RowContent row;
  if (openingFence(line) > 0) {
    take(row, std::move(trailer));
    readCode(row, line, depth);
  } else {
    const MarkedText mark = markedText(line);
    row.type = mark.type;
    row.text = parseInline(mark.text);
    take(row, std::move(trailer));
    if (mark.done) setLead(row, "true");
  }
  builder_.add(depth, std::move(row));
}

void VellReader::readCode(RowContent& row, std::string_view line, std::size_t depth) {
  const std::size_t length = openingFence(line);
  const std::string_view fence = line.substr(0, length);
  const std::string_view info = trim(line.substr(length));
  const std::size_t openedAt = lines_.number();
  const std::size_t openedOffset = lines_.offset();
  row.type = RowType::code;
  if (!info.empty()) setLead(row, info);
  std::string text;
  for (bool first = true; lines_.next(); first = false) {
    std::string_view content = lines_.line();
    if (isClosingFence(content, fence)) return void(row.text = Text(std::move(text)));
    for (std::size_t tab = 0; tab < depth && content.starts_with('\t'); ++tab) content.remove_prefix(1);
    if (!first) text += '\n';
    text += content;
  }
  throw FormatError("this block of code is not closed", openedAt, openedOffset);
}

void VellReader::take(RowContent& row, RowTrailer trailer) {
  if (trailer.type) row.type = *trailer.type;
  row.persistentId = std::move(trailer.persistentId);
  row.attributes = std::move(trailer.attributes);
  row.created = time(trailer.created, time_);
  row.modified = time(trailer.modified, row.created);
}

Timestamp VellReader::time(const std::string& text, Timestamp otherwise) {
  if (text.empty()) return otherwise;
  const auto time = document::parseTimestamp(text);
  if (!time) fail("\"" + text + "\" is not a time like 2026-01-31T12:00:00Z");
  return *time;
}

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
  if (out_.size() == contentFrom_) out_ += emptyRow;
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
  if (openingFence(content) == 0 && markedText(content).type == RowType::body) return;
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
  appendFenced(out_, text, fence, depth);
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

void readVell(std::string_view text, const ReadOptions& options, Outline& outline) {
  VellReader(checkedSource(text), options, outline).read();
}

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
