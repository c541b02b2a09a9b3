#include <cctype>
#include <utility>

#include "formats/document_header.h"
#include "formats/inline_markdown.h"
#include "formats/markdown_blocks.h"
#include "formats/markdown_format.h"
#include "text/lines.h"

namespace vell::formats {
namespace {

bool isUuid(std::string_view id) {
  if (id.size() != 36) return false;
  for (std::size_t at = 0; at < id.size(); ++at) {
    const bool isDash = at == 8 || at == 13 || at == 18 || at == 23;
    if (isDash ? id[at] != '-' : !std::isxdigit(static_cast<unsigned char>(id[at]))) return false;
  }
  return true;
}

bool endsFrontMatter(std::string_view line) { return line == "---" || line == "..."; }

/// Without an end, or with lines that are no header, the first line is a rule like any other.
bool readFrontMatter(std::string_view text, std::size_t from, MarkdownText& read, Outline& outline) {
  DocumentHeader header(HeaderKind::yaml);
  text::Lines lines(text.substr(from));
  if (!lines.next() || trimEnd(lines.line()) != "---") return false;
  bool isFirst = true;
  while (lines.next()) {
    if (std::exchange(isFirst, false)) read.headerBegin = from + lines.offset();
    if (endsFrontMatter(trimEnd(lines.line()))) {
      read.headerEnd = from + lines.offset();
      if (!header.hasKeys() && read.headerBegin < read.headerEnd) break;  // a heading between two rules
      read.bodyBegin = lines.next() ? from + lines.offset() : text.size();
      header.finish(outline);
      return true;
    }
    if (!header.readLine(lines.line())) break;
  }
  read.headerBegin = read.headerEnd = 0;
  return false;
}

}  // namespace

MarkdownText readMarkdownText(std::string_view text, MarkdownScope scope, Timestamp time, Outline* outline) {
  MarkdownText read;
  read.bodyBegin = text.starts_with("\xEF\xBB\xBF") ? 3 : 0;
  Outline head;
  readFrontMatter(text, read.bodyBegin, read, outline ? *outline : head);
  const bool isOurs = scope == MarkdownScope::rows || isUuid((outline ? *outline : head).persistentId());
  const auto blocks =
      readMarkdownBlocks(text, read.bodyBegin, isOurs ? Indentation::rows : Indentation::code);
  read.rows = rowsOfBlocks(text, blocks, scope, time);
  return read;
}

static void readMarkdownAs(MarkdownScope scope, std::string_view text, const ReadOptions& options,
                           Outline& outline) {
  checkedSource(text);
  outline.setCreated(options.time);
  MarkdownText read = readMarkdownText(text, scope, options.time, &outline);
  TreeBuilder builder(outline);
  for (MarkdownRow& row : read.rows) builder.add(row.depth, std::move(row.content), row.span);
}

void readMarkdown(std::string_view text, const ReadOptions& options, Outline& outline) {
  readMarkdownAs(MarkdownScope::file, text, options, outline);
}

void readMarkdownRows(std::string_view text, const ReadOptions& options, Outline& outline) {
  readMarkdownAs(MarkdownScope::rows, text, options, outline);
}

}  // namespace vell::formats
