#include "formats/document_header.h"
#include "formats/inline_markdown.h"
#include "formats/line_update.h"
#include "formats/marked_line.h"
#include "formats/vell_format.h"

namespace vell::formats {
namespace {

/// What stands before the rows.
struct Head {
  std::string_view mark;    ///< byte order mark, if there is one
  std::string_view form;    ///< the line "vell 1" with its line end; empty where the file has no header
  std::string_view lines;   ///< the header's `key: value` lines
  std::string_view behind;  ///< the blank lines before the first row
};

Head takeApartHead(std::string_view text) {
  Head head;
  const std::string_view content = checkedSource(text);
  head.mark = text.substr(0, text.size() - content.size());
  text::Lines lines(content);
  if (!lines.next() || !isVellHeader(trimEnd(lines.line()))) {
    head.behind = content;
    return head;
  }
  const std::size_t from = std::min(content.find('\n'), content.size() - 1) + 1;
  std::size_t to = content.size();
  while (to == content.size() && lines.next()) {
    if (trim(lines.line()).empty()) to = lines.offset();
  }
  head.form = content.substr(0, from);
  head.lines = content.substr(from, to - from);
  head.behind = content.substr(to);
  return head;
}

/// The bytes between two parts of a line; a blank where one of the parts is missing.
std::string_view between(std::string_view left, std::string_view right) {
  if (left.empty() || right.empty()) return " ";
  const char* from = left.data() + left.size();
  return {from, static_cast<std::size_t>(right.data() - from)};
}

/// Keeps a time as it is written where it is still that time.
void keepTime(std::string& time, const std::string& written, Timestamp now) {
  if (!written.empty() && document::parseTimestamp(written) == now) time = written;
}

std::string_view firstLineOf(std::string_view lines) {
  text::Lines reader(lines);
  return reader.next() ? reader.line() : lines;
}

/// Writes one row over the lines that it had, keeping what still means the same.
class RowUpdate {
 public:
  RowUpdate(const ChangedLine& line, const Outline& outline, Times times)
      : row_(line.row),
        lines_(line.lines),
        depth_(line.depth),
        outline_(outline),
        firstLine_(firstLineOf(lines_)),
        parts_(takeApart(firstLine_)),
        times_(parts_.says.created.empty() && parts_.says.modified.empty() ? times : Times::kept),
        writer_(outline.created(), times_) {}

  void write(std::string& out) const {
    std::string lines;
    if (!lines_.empty()) lines = row_.type() == RowType::code && canBeFenced(row_) ? code() : marked();
    if (!lines.empty() && reads(lines)) {
      out += lines;
    } else {
      writer_.write(row_, depth_, out);
    }
  }

 private:
  std::string marked() const;
  std::string code() const;
  void appendTrailer(std::string& out, bool typeIsMarked) const;
  bool keepsMark() const;
  bool reads(std::string_view lines) const;

  const Row& row_;
  std::string_view lines_;
  std::size_t depth_;
  const Outline& outline_;
  std::string_view firstLine_;
  VellLine parts_;
  Times times_;
  VellWriter writer_;
};

bool RowUpdate::keepsMark() const {
  if (parts_.isFence || parts_.says.type.value_or(parts_.type) != row_.type()) return false;
  if (parts_.mark == "\\" || (parts_.mark == "---" && !row_.text().empty())) return false;
  return row_.type() != RowType::task || parts_.done == (writer_.mark(row_) == "[x]");
}

std::string RowUpdate::marked() const {
  const std::string_view mark = keepsMark() ? parts_.mark : writer_.mark(row_);
  const std::string text = rewriteInline(parts_.isFence ? "" : parts_.text, row_.text());
  std::string out(mark);
  if (!mark.empty() && !text.empty()) out += between(parts_.mark, parts_.text);
  out += text;
  if (mark.empty()) escapeMark(out, 0);
  appendTrailer(out, !mark.empty());
  if (out.empty()) out = "\\";
  return out.append(firstLine_.substr(trimEnd(firstLine_).size()));
}

/// Empty where the code has no fence that can stay.
std::string RowUpdate::code() const {
  if (!parts_.isFence) return {};
  std::string out(parts_.mark);
  const std::string* language = markAttributeValue(row_);
  if (language && isFenceInfo(*language)) out.append(between(parts_.mark, parts_.text)).append(*language);
  appendTrailer(out, true);
  out += firstLine_.substr(trimEnd(firstLine_).size());
  const bool sameText = outline_.source()->original(row_.id())->text == row_.text();
  if (sameText) return out.append(lines_.substr(firstLine_.size()));
  out += '\n';
  appendFenced(out, row_.text().string(), parts_.mark, depth_);
  out.pop_back();
  return out;
}

void RowUpdate::appendTrailer(std::string& out, bool typeIsMarked) const {
  RowTrailer now = writer_.trailer(row_, typeIsMarked);
  if (parts_.says.type == row_.type()) now.type = row_.type();
  keepTime(now.created, parts_.says.created, row_.created());
  keepTime(now.modified, parts_.says.modified, row_.modified());
  const std::string trailer = rewriteTrailer(parts_.trailer, Times::kept, now);
  if (trailer.empty()) return;
  if (!out.empty()) out += between(parts_.text.empty() ? parts_.mark : parts_.text, parts_.trailer);
  out += trailer;
}

/// True if the reader takes the lines for exactly this row.
bool RowUpdate::reads(std::string_view lines) const {
  text::Lines reader(lines);
  if (!reader.next() || lines.starts_with('\t')) return false;
  try {
    const RowContent read = readVellRow(trimEnd(reader.line()), depth_, outline_.created(), reader);
    return !reader.next() && says(row_, read, times_);
  } catch (const FormatError&) {
    return false;
  }
}

/// What stands before the rows now.
std::string headNow(const Head& head, const Outline& outline, std::string_view lineEnd) {
  const std::string lines = DocumentHeader(HeaderKind::vell).update(head.lines, outline);
  std::string out;
  if (!head.form.empty()) {
    out.append(head.form).append(lines);
  } else if (!lines.empty()) {
    out.append("vell 1").append(lineEnd).append(lines);
  }
  const bool needsBlankLine = !out.empty() && head.behind.empty();
  out += head.behind;
  if (outline.rowCount() > 0) {
    if (!out.empty() && !out.ends_with('\n')) out += lineEnd;
    if (needsBlankLine) out += lineEnd;
  }
  return out;
}

}  // namespace

FileText updateVell(const Outline& outline) {
  const Head head = takeApartHead(LineSource(*outline.source()).head());
  const bool keepsTimes = DocumentHeader(HeaderKind::vell).tells(head.lines, "created");
  const auto render = [&](const ChangedLine& line, std::string& out) {
    RowUpdate(line, outline, keepsTimes ? Times::kept : Times::dropped).write(out);
  };
  const std::string_view lineEnd = text::lineEndOf(outline.source()->text());
  const std::string before = headNow(head, outline, lineEnd);
  std::string text = updateLines(outline, std::string(head.mark) + before, lineEnd, Times::kept, render);
  if (!before.empty()) return FileText(std::move(text));
  // A first row that reads like the first line of a header is none behind an empty line.
  text::Lines lines(std::string_view(text).substr(head.mark.size()));
  if (lines.next() && isVellHeader(trimEnd(lines.line()))) text.insert(head.mark.size(), lineEnd);
  return FileText(std::move(text));
}

}  // namespace vell::formats
