#include <array>
#include <optional>

#include "formats/document_header.h"
#include "formats/inline_markdown.h"
#include "formats/markdown_format.h"
#include "formats/marked_line.h"
#include "text/lines.h"

namespace vell::formats {
namespace {

constexpr std::size_t tabColumns = 4;

/// White space at the front of a line.
struct Indent {
  std::size_t columns = 0;
  std::size_t bytes = 0;
};

Indent indentOf(std::string_view line, std::size_t maxColumns = std::string_view::npos) {
  Indent indent;
  while (indent.bytes < line.size() && indent.columns < maxColumns) {
    const char c = line[indent.bytes];
    if (c != ' ' && c != '\t') break;
    indent.columns = c == ' ' ? indent.columns + 1 : (indent.columns / tabColumns + 1) * tabColumns;
    ++indent.bytes;
  }
  return indent;
}

/// The rows that the next row can be a child of.
class Nesting {
 public:
  /// Places a row; `section` is the level of a heading that gathers what follows it, 0 for other rows.
  /// Returns its depth.
  std::size_t place(std::size_t columns, std::size_t section) {
    close(columns, section);
    open_.push_back({columns, section, section > 0 ? section : enclosing()});
    return open_.size() - 1;
  }
  /// The level of the section that a row would stand in, 0 for none.
  std::size_t enclosingAt(std::size_t columns, std::size_t section) {
    close(columns, section);
    return enclosing();
  }

 private:
  struct Open {
    std::size_t columns;
    std::size_t section;
    std::size_t level;  ///< of the nearest section, its own included
  };

  std::size_t enclosing() const { return open_.empty() ? 0 : open_.back().level; }
  void close(std::size_t columns, std::size_t section) {
    while (!open_.empty()) {
      const Open& last = open_.back();
      const bool gathers = last.section > 0 && (section == 0 || section > last.section);
      if (last.columns < columns || (last.columns == columns && gathers)) return;
      open_.pop_back();
    }
  }

  std::vector<Open> open_;
};

class MarkdownReader {
 public:
  enum class Scope { document, rows };

  MarkdownReader(std::string_view text, const ReadOptions& options, Outline& outline, Scope scope)
      : lines_(text), time_(options.time), outline_(outline), builder_(outline), scope_(scope) {}

  void read() {
    outline_.setCreated(time_);
    readFrontMatter();
    while (lines_.next()) {
      if (!trim(lines_.line()).empty()) readRow();
    }
  }

 private:
  void readFrontMatter();
  void readRow();
  void readCode(RowContent& row, std::string_view content, Indent indent);
  std::size_t readMarked(RowContent& row, std::string_view content, bool typeIsTold, std::size_t columns);

  text::Lines lines_;
  Timestamp time_;
  Outline& outline_;
  TreeBuilder builder_;
  Scope scope_;
  Nesting nesting_;
};

bool endsFrontMatter(std::string_view line) { return line == "---" || line == "..."; }

/// Without an end, or with lines that are no header, the first line is a rule like any other.
void MarkdownReader::readFrontMatter() {
  DocumentHeader header(false);
  text::Lines lines = lines_;
  if (!lines.next() || trimEnd(lines.line()) != "---") return;
  while (lines.next()) {
    if (endsFrontMatter(trimEnd(lines.line()))) {
      header.finish(outline_);
      lines_ = lines;
      return;
    }
    if (!header.readLine(lines.line())) return;
  }
}

void MarkdownReader::readRow() {
  const std::string_view line = trimEnd(lines_.line());
  const Indent indent = indentOf(line);
  std::string_view content = line.substr(indent.bytes);
  RowTrailer trailer;
  takeTrailer(content, Times::dropped, trailer);
  RowContent row;
  row.persistentId = std::move(trailer.persistentId);
  row.attributes = std::move(trailer.attributes);
  row.created = row.modified = time_;
  std::size_t section = 0;
  if (openingFence(content) > 0) {
    readCode(row, content, indent);
  } else {
    section = readMarked(row, content, trailer.type.has_value(), indent.columns);
  }
  row.type = trailer.type.value_or(row.type);
  builder_.add(nesting_.place(indent.columns, section), std::move(row));
}

/// Returns the level of the section that the row begins, 0 if it begins none.
std::size_t MarkdownReader::readMarked(RowContent& row, std::string_view content, bool typeIsTold,
                                       std::size_t columns) {
  const MarkdownMark mark = markdownMark(content);
  row.type = mark.type;
  row.text = parseInline(mark.text);
  if (mark.done) setLead(row, "true");
  if (mark.type != RowType::heading) return 0;
  const std::size_t section = typeIsTold ? 0 : mark.level;
  const bool isNatural = mark.level == naturalLevel(nesting_.enclosingAt(columns, section));
  if (!isNatural && scope_ == Scope::document) setLead(row, std::to_string(mark.level));
  return section;
}

void MarkdownReader::readCode(RowContent& row, std::string_view content, Indent indent) {
  const std::string_view prefix = lines_.line().substr(0, indent.bytes);
  const std::size_t length = openingFence(content);
  const std::string_view info = trim(content.substr(length));
  row.type = RowType::code;
  if (!info.empty()) setLead(row, info);
  std::string text;
  for (bool first = true; lines_.next(); first = false) {
    std::string_view line = lines_.line();
    if (isClosingFence(line, content.substr(0, length))) break;
    line.remove_prefix(line.starts_with(prefix) ? prefix.size() : indentOf(line, indent.columns).bytes);
    if (!first) text += '\n';
    text += line;
  }
  row.text = Text(std::move(text));
}

/// A heading's "#", up to six and a blank or nothing behind.
std::size_t headingLevel(std::string_view line) {
  if (!line.starts_with('#')) return 0;
  const std::size_t length = runLength(line, 0);
  return length <= maxHeadingLevel && (line.size() == length || isBlank(line[length])) ? length : 0;
}

bool isRule(std::string_view line) {
  std::size_t marks = 0;
  for (const char c : line) {
    if (isBlank(c)) continue;
    if (c != line.front() || (c != '-' && c != '*' && c != '_')) return false;
    ++marks;
  }
  return marks >= 3;
}

bool isMarked(std::string_view line, std::size_t length) {
  return line.size() == length || isBlank(line[length]);
}

MarkdownMark listItem(std::string_view text) {
  text = trim(text);
  constexpr std::array<std::string_view, 3> boxes = {"[ ]", "[x]", "[X]"};
  for (const std::string_view box : boxes) {
    if (text.starts_with(box) && isMarked(text, box.size())) {
      return {RowType::task, box != boxes.front(), 0, trim(text.substr(box.size()))};
    }
  }
  return {RowType::unordered, false, 0, text};
}

MarkdownMark quotation(std::string_view text) {
  text = trim(text);
  if (text.starts_with(noteMark) && isMarked(text, noteMark.size())) {
    return {RowType::note, false, 0, trim(text.substr(noteMark.size()))};
  }
  return {RowType::quote, false, 0, text};
}

}  // namespace

std::size_t naturalLevel(std::size_t enclosing) { return std::min(enclosing + 1, maxHeadingLevel); }

MarkdownMark markdownMark(std::string_view line) {
  if (line.empty() || line == emptyMarkdownRow) return {};
  const std::size_t level = headingLevel(line);
  if (level > 0) return {RowType::heading, false, level, trim(line.substr(level))};
  if (isRule(line)) return {RowType::hr, false, 0, {}};
  if (line.front() == '>') return quotation(line.substr(1));
  const bool isBullet = line.front() == '-' || line.front() == '*' || line.front() == '+';
  if (isBullet && isMarked(line, 1)) return listItem(line.substr(1));
  const std::size_t ordinal = ordinalLength(line);
  if (ordinal > 0 && isMarked(line, ordinal)) return {RowType::ordered, false, 0, trim(line.substr(ordinal))};
  return {RowType::body, false, 0, line};
}

void readMarkdown(std::string_view text, const ReadOptions& options, Outline& outline) {
  MarkdownReader(checkedSource(text), options, outline, MarkdownReader::Scope::document).read();
}

void readMarkdownRows(std::string_view text, const ReadOptions& options, Outline& outline) {
  MarkdownReader(checkedSource(text), options, outline, MarkdownReader::Scope::rows).read();
}

}  // namespace vell::formats
