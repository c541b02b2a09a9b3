#include "formats/markdown_row.h"

#include <algorithm>

#include "formats/attribute_list.h"
#include "formats/inline_markdown.h"
#include "formats/marked_line.h"

namespace vell::formats {
namespace {

/// The row that a text is read as; none where it is not exactly one.
std::optional<MarkdownRow> readOne(std::string_view text) {
  std::vector<MarkdownRow> read = readMarkdownPart(text, {}, Indentation::rows);
  if (read.size() != 1) return std::nullopt;
  return std::move(read.front());
}

bool isListItem(RowType type) {
  return type == RowType::task || type == RowType::ordered || type == RowType::unordered;
}

/// A line that begins with a word is nothing but text.
bool isSafe(MarkdownForm form, std::string_view text) {
  if (text.find('\n') != std::string_view::npos) return false;
  if (form == MarkdownForm::heading) return !text.ends_with('#');
  return isWordByte(text.front()) && ordinalLength(text) == 0;
}

/// But for its text.
bool saysTheSame(const Row& row, const RowContent& read) {
  return row.type() == read.type && row.attributes() == read.attributes &&
         row.persistentId() == read.persistentId;
}

class RowWriter {
 public:
  RowWriter(const Row& row, const MarkdownRowStyle& style) : row_(row), style_(style) {}

  std::string write();

 private:
  bool isDone() const {
    const std::string* done = row_.attributes().find("done");
    return row_.type() == RowType::task && done && *done == "true";
  }
  /// The type that the form stands for.
  RowType formType() const;
  std::string mark() const;
  RowTrailer trailer(bool markTellsAttribute) const;
  void writeTrailer(std::string& line, const RowTrailer& trailer) const;
  std::string rewrittenText() const;
  std::string lineText() const;
  std::string continuation() const;
  std::string line(std::string_view text) const;
  bool readsBack(const std::string& line) const;
  bool isPlain(std::string_view text, const std::string& line) const;
  std::string markedLine() const;
  std::string setext() const;
  std::string fenced() const;
  std::string verbatim() const;

  const Row& row_;
  const MarkdownRowStyle& style_;
};

std::string RowWriter::write() {
  switch (style_.form) {
    case MarkdownForm::code:
      return fenced();
    case MarkdownForm::verbatim:
      return verbatim();
    case MarkdownForm::heading:
      return style_.isSetext ? setext() : markedLine();
    default:
      return markedLine();
  }
}

RowType RowWriter::formType() const {
  switch (style_.form) {
    case MarkdownForm::heading:
      return RowType::heading;
    case MarkdownForm::rule:
      return RowType::hr;
    case MarkdownForm::code:
      return RowType::code;
    case MarkdownForm::quote:
      return row_.type() == RowType::note ? RowType::note : RowType::quote;
    case MarkdownForm::item:
      if (ordinalLength(style_.mark) > 0) return RowType::ordered;
      return row_.type() == RowType::task ? RowType::task : RowType::unordered;
    default:
      return RowType::body;
  }
}

std::string RowWriter::mark() const {
  switch (style_.form) {
    case MarkdownForm::heading:
      return std::string(style_.level, '#');
    case MarkdownForm::rule:
      return style_.isFirst ? "***" : "---";  // a document that begins with "---" has front matter
    case MarkdownForm::quote:
      return row_.type() == RowType::note ? ">" + style_.gap + std::string(noteMark) : ">";
    case MarkdownForm::item:
      if (formType() != RowType::task) return style_.mark;
      return style_.mark + style_.gap + (isDone() ? "[x]" : "[ ]");
    default:
      return "";
  }
}

RowTrailer RowWriter::trailer(bool markTellsAttribute) const {
  RowTrailer trailer = trailerOf(row_, markTellsAttribute);
  if (style_.tellsType || formType() != row_.type()) trailer.type = row_.type();
  trailer.depth = style_.depth;
  return trailer;
}

/// Over the one that the row had.
void RowWriter::writeTrailer(std::string& line, const RowTrailer& trailer) const {
  const MarkdownRow* read = style_.read;
  if (read && !read->trailer.empty() && !read->toldDepth && !trailer.depth) {
    line += rewriteTrailer(read->trailer, Times::dropped, trailer);
  } else {
    appendTrailer(line, Times::dropped, trailer);
  }
}

/// What the text was parsed from, changed where it says something else; may have several lines.
std::string RowWriter::rewrittenText() const {
  const bool isInline =
      style_.read && style_.read->form != MarkdownForm::verbatim && style_.read->form != MarkdownForm::code;
  return isInline ? rewriteInline(style_.read->inlineSource, row_.text(), LineFeeds::breaks) : lineText();
}

/// The text on one line.
std::string RowWriter::lineText() const {
  std::string text;
  appendInline(text, row_.text());
  return text;
}

/// What stands in front of the second and all further lines.
std::string RowWriter::continuation() const {
  if (style_.form == MarkdownForm::item) return std::string(style_.mark.size(), ' ') + style_.gap;
  return style_.form == MarkdownForm::quote ? ">" + style_.gap : "";
}

std::string RowWriter::line(std::string_view text) const {
  std::string line = mark();
  const bool hasBox = formType() == RowType::task || formType() == RowType::note;
  if (!line.empty() && !text.empty()) line += hasBox ? " " : style_.gap;
  const std::string before = continuation();
  for (const char c : text) {
    line += c;
    if (c == '\n') line += before;
  }
  const std::string* lead = markAttributeValue(row_);
  const bool markTellsAttribute = lead && ((formType() == RowType::task && isDone()) ||
                                           (row_.type() == RowType::heading && style_.levelIsGranted));
  const RowTrailer trailer = this->trailer(markTellsAttribute);
  if (line.empty() && trailer.empty()) line = emptyMarkdownRow;
  if (!line.empty() && !trailer.empty()) line += ' ';
  writeTrailer(line, trailer);
  return line;
}

bool RowWriter::readsBack(const std::string& line) const {
  const auto read = readOne(line);
  return read && read->form == style_.form && read->content.type == row_.type() &&
         read->content.text == row_.text();
}

/// True if the text needs no escape. A formula that nothing ends would take in rows far behind it.
bool RowWriter::isPlain(std::string_view text, const std::string& line) const {
  const bool isOpen = style_.form == MarkdownForm::paragraph && opensFormula(text);
  return !isOpen && readsBack(line);
}

/// Text that begins like a mark is kept from being read as one.
std::string RowWriter::markedLine() const {
  std::string text = rewrittenText();
  if (text.empty() || isSafe(style_.form, text)) return line(text);
  if (std::string plain = line(text); isPlain(text, plain)) return plain;
  if (text.find('\n') != std::string::npos) {
    text = lineText();
    if (std::string plain = line(text); isPlain(text, plain)) return plain;
  }
  if (style_.form == MarkdownForm::heading) return line(text.insert(text.size() - 1, 1, '\\'));
  const std::size_t ordinal = ordinalLength(text);
  std::string escaped = text;
  escaped.insert(ordinal > 0 ? ordinal - 1 : 0, 1, '\\');
  const bool isAscii = static_cast<unsigned char>(text.front()) < 0x80;
  if (escaped = line(escaped); readsBack(escaped) || !isAscii) return escaped;
  std::string reference;
  appendReference(reference, text.front());
  return line(text.replace(0, 1, reference));
}

std::string RowWriter::setext() const {
  const std::string text = rewrittenText();
  if (text.empty()) return markedLine();
  std::string lines = line(text).substr(style_.level + style_.gap.size());
  const std::size_t width = lines.size() - (lines.rfind('\n') + 1);
  lines += '\n';
  lines.append(std::max<std::size_t>(width, 3), style_.level == 1 ? '=' : '-');
  return readsBack(lines) ? lines : markedLine();
}

/// The fence and what stands behind it stay as they were where they still tell the same.
std::string RowWriter::fenced() const {
  const std::string_view text = row_.text().string();
  const std::string* language = markAttributeValue(row_);
  const bool markTellsAttribute = language && isFenceInfo(*language);
  std::string info = markTellsAttribute ? *language : "";
  const RowTrailer trailer = this->trailer(markTellsAttribute);
  if (!info.empty() && !trailer.empty()) info += ' ';
  writeTrailer(info, trailer);
  const MarkdownRow* read = style_.read;
  const std::string_view before =
      read && read->form == MarkdownForm::code ? std::string_view(read->inlineSource) : std::string_view();
  const std::size_t length = openingFence(before);
  const bool isSame = length > 0 && !style_.depth && !read->toldDepth && saysTheSame(row_, read->content);
  if (isSame) info = before.substr(length);
  const bool needsTildes = info.find('`') != std::string::npos;
  std::string fence = fenceFor(text, needsTildes || before.starts_with('~') ? '~' : '`');
  if (length > fence.size()) fence.append(length - fence.size(), fence.front());
  std::string lines = fence + info;
  lines += '\n';
  if (!text.empty()) lines.append(text) += '\n';
  return lines + fence;
}

std::string RowWriter::verbatim() const {
  std::string lines = row_.text().string();
  const RowTrailer trailer = this->trailer(false);
  if (!trailer.empty()) lines += '\n';
  writeTrailer(lines, trailer);
  return lines;
}

/// True if the text written as it is stands for the row, and takes in nothing that follows it.
bool isVerbatim(const Row& row, std::optional<std::size_t> toldDepth) {
  const std::string& text = row.text().string();
  const bool mayBe = text.find('\n') != std::string::npos || text.starts_with('<') || text.starts_with('[') ||
                     text.starts_with("$$");
  if (!mayBe || !row.text().isPlain() || text.find('\r') != std::string::npos) return false;
  MarkdownRowStyle style;
  style.form = MarkdownForm::verbatim;
  style.depth = toldDepth;
  const MarkdownText read = readMarkdownText(RowWriter(row, style).write() + "\n\nx\n", MarkdownScope::rows);
  return read.rows.size() == 2 && read.rows[1].form == MarkdownForm::paragraph &&
         read.rows[0].form == MarkdownForm::verbatim && read.rows[0].content.text == row.text();
}

}  // namespace

MarkdownForm naturalForm(const Row& row, std::optional<std::size_t> toldDepth) {
  switch (row.type()) {
    case RowType::heading:
      return MarkdownForm::heading;
    case RowType::note:
    case RowType::quote:
      return MarkdownForm::quote;
    case RowType::hr:
      return row.text().empty() ? MarkdownForm::rule : MarkdownForm::paragraph;
    case RowType::code:
      return canBeFenced(row) ? MarkdownForm::code : MarkdownForm::paragraph;
    case RowType::body:
      return isVerbatim(row, toldDepth) ? MarkdownForm::verbatim : MarkdownForm::paragraph;
    default:
      return isListItem(row.type()) ? MarkdownForm::item : MarkdownForm::paragraph;
  }
}

std::string writeMarkdownRow(const Row& row, const MarkdownRowStyle& style) {
  return RowWriter(row, style).write();
}

}  // namespace vell::formats
