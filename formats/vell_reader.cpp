#include <array>

#include "formats/document_header.h"
#include "formats/inline_syntax.h"
#include "formats/inline_text.h"
#include "formats/marked_line.h"
#include "formats/vell_format.h"
#include "text/lines.h"

namespace vell::formats {
namespace {

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
    const VellMark mark = vellMark(line);
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

}  // namespace

VellMark vellMark(std::string_view line) {
  if (line == emptyVellRow) return {};
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

void readVell(std::string_view text, const ReadOptions& options, Outline& outline) {
  VellReader(checkedSource(text), options, outline).read();
}

}  // namespace vell::formats
