#include <array>

#include "formats/document_header.h"
#include "formats/inline_markdown.h"
#include "formats/marked_line.h"
#include "formats/vell_format.h"

namespace vell::formats {
namespace {

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

/// A mark is followed by a blank or by nothing.
bool isMark(std::string_view line, std::size_t length) {
  return line.size() == length || isBlank(line[length]);
}

void takeMark(VellLine& parts, std::string_view line, std::size_t length, RowType type, bool done = false) {
  parts.mark = line.substr(0, length);
  parts.text = trim(line.substr(length));
  parts.type = type;
  parts.done = done;
}

void takeMarkAndText(VellLine& parts, std::string_view line) {
  parts.text = line;
  if (const std::size_t fence = openingFence(line)) {
    parts.isFence = true;
    return takeMark(parts, line, fence, RowType::code);
  }
  if (line == "\\") return takeMark(parts, line, line.size(), RowType::body);
  if (line == "---") return takeMark(parts, line, line.size(), RowType::hr);
  for (const Mark& entry : marks) {
    if (!line.starts_with(entry.mark) || !isMark(line, entry.mark.size())) continue;
    return takeMark(parts, line, entry.mark.size(), entry.type, entry.done);
  }
  const std::size_t ordinal = ordinalLength(line);
  if (ordinal > 0 && isMark(line, ordinal)) takeMark(parts, line, ordinal, RowType::ordered);
}

/// The lines up to the closing fence, without the tabs that indent the row.
Text readCode(std::string_view fence, std::size_t depth, text::Lines& lines) {
  const std::size_t openedAt = lines.number();
  const std::size_t openedOffset = lines.offset();
  std::string text;
  for (bool first = true; lines.next(); first = false) {
    std::string_view content = lines.line();
    if (isClosingFence(content, fence)) return Text(std::move(text));
    for (std::size_t tab = 0; tab < depth && content.starts_with('\t'); ++tab) content.remove_prefix(1);
    if (!first) text += '\n';
    text += content;
  }
  throw FormatError("this block of code is not closed", openedAt, openedOffset);
}

Timestamp timeOr(Timestamp otherwise, const std::string& text, const text::Lines& lines) {
  if (text.empty()) return otherwise;
  if (const auto time = document::parseTimestamp(text)) return *time;
  throw FormatError("\"" + text + "\" is not a time like 2026-01-31T12:00:00Z", lines.number(),
                    lines.offset());
}

class VellReader {
 public:
  VellReader(std::string_view text, std::size_t skipped, const ReadOptions& options, Outline& outline)
      : lines_(text),
        skipped_(skipped),
        time_(options.time),
        outline_(outline),
        builder_(outline, options.eachRow) {}

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
  [[noreturn]] void fail(const std::string& fault) const {
    throw FormatError(fault, lines_.number(), lines_.offset());
  }

  text::Lines lines_;
  std::size_t skipped_;  ///< bytes before the text
  Timestamp time_;
  Outline& outline_;
  TreeBuilder builder_;
};

void VellReader::readHeader() {
  if (!lines_.next()) return;
  const std::string_view first = trimEnd(lines_.line());
  if (!isVellHeader(first)) return lines_.unread();
  if (first != "vell 1") fail("this file is in a newer form of the format (\"" + std::string(first) + "\")");
  DocumentHeader header(HeaderKind::vell);
  while (lines_.next() && !trim(lines_.line()).empty()) {
    if (!header.readLine(lines_.line())) fail("expected \"key: value\" or an empty line to end the header");
  }
  if (!header.finish(outline_)) fail("\"created\" in the header is not a time like 2026-01-31T12:00:00Z");
  time_ = outline_.created();
}

void VellReader::readRow() {
  const std::string_view line = trimEnd(lines_.line());
  const std::size_t depth = line.find_first_not_of('\t');
  if (depth > builder_.maxDepth()) {
    fail("indented by " + std::to_string(depth) + " tabs, but the row before allows at most " +
         std::to_string(builder_.maxDepth()));
  }
  SourceSpan span{.begin = skipped_ + lines_.offset() + depth};
  RowContent content = readVellRow(line.substr(depth), depth, time_, lines_);
  span.end = skipped_ + lines_.offset() + lines_.line().size();
  builder_.add(depth, std::move(content), span);
}

}  // namespace

bool isVellHeader(std::string_view line) {
  return line.starts_with("vell ") && line.find_first_not_of("0123456789", 5) == line.npos;
}

VellLine takeApart(std::string_view line) {
  VellLine parts;
  const std::string_view whole = trimEnd(line);
  line = whole;
  if (takeTrailer(line, Times::kept, parts.says)) {
    parts.trailer = trim(whole.substr(line.size()));
  }
  takeMarkAndText(parts, line);
  return parts;
}

RowContent readVellRow(std::string_view line, std::size_t depth, Timestamp created, text::Lines& lines) {
  VellLine parts = takeApart(line);
  RowContent row;
  row.type = parts.says.type.value_or(parts.type);
  row.persistentId = std::move(parts.says.persistentId);
  row.attributes = std::move(parts.says.attributes);
  row.created = timeOr(created, parts.says.created, lines);
  row.modified = timeOr(row.created, parts.says.modified, lines);
  if (parts.isFence) {
    row.type = RowType::code;
    if (!parts.text.empty()) setMarkAttribute(row, parts.text);
    row.text = readCode(parts.mark, depth, lines);
  } else {
    row.text = parseInline(parts.text);
    if (parts.done) setMarkAttribute(row, "true");
  }
  return row;
}

void readVell(std::string_view text, const ReadOptions& options, Outline& outline) {
  const std::string_view checked = checkedSource(text);
  VellReader(checked, text.size() - checked.size(), options, outline).read();
}

}  // namespace vell::formats
