#include <cctype>
#include <memory>
#include <utility>

#include "formats/document_header.h"
#include "formats/inline_markdown.h"
#include "formats/markdown_blocks.h"
#include "formats/markdown_format.h"
#include "formats/markdown_source.h"
#include "text/lines.h"
#include "text/utf8.h"

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
bool readFrontMatter(std::string_view text, MarkdownHead& head, Outline& outline) {
  const std::size_t from = head.bodyBegin;
  DocumentHeader header(HeaderKind::yaml);
  text::Lines lines(text.substr(from));
  if (!lines.next() || trimEnd(lines.line()) != "---") return false;
  bool isFirst = true;
  while (lines.next()) {
    if (std::exchange(isFirst, false)) head.headerBegin = from + lines.offset();
    if (endsFrontMatter(trimEnd(lines.line()))) {
      head.headerEnd = from + lines.offset();
      if (!header.hasKeys() && head.headerBegin < head.headerEnd) break;  // a heading between two rules
      head.bodyBegin = lines.next() ? from + lines.offset() : text.size();
      header.finish(outline);
      return true;
    }
    if (!header.readLine(lines.line())) break;
  }
  head.headerBegin = head.headerEnd = 0;
  return false;
}

MarkdownHead readHead(std::string_view text, MarkdownScope scope, Outline& outline) {
  MarkdownHead head;
  head.bodyBegin = text.starts_with(text::byteOrderMark) ? text::byteOrderMark.size() : 0;
  readFrontMatter(text, head, outline);
  const bool isOurs = scope == MarkdownScope::rows || isUuid(outline.persistentId());
  head.indentation = isOurs ? Indentation::rows : Indentation::code;
  return head;
}

void readMarkdownAs(MarkdownScope scope, std::string_view text, const ReadOptions& options,
                    Outline& outline) {
  checkedSource(text);
  outline.setCreated(options.time);
  auto notes = std::make_unique<MarkdownNotes>();
  notes->head = readHead(text, scope, outline);
  notes->lineEnd = lineEndOf(text);
  TreeBuilder builder(outline, options.eachRow);
  const MarkdownBlockReader blocks(text, notes->head.bodyBegin, notes->head.indentation);
  forEachMarkdownRow(text, blocks, scope, options, {}, [&](MarkdownRow&& row) {
    notes->add(text, row);
    builder.add(row.depth, std::move(row.content), row.span);
  });
  if (document::Source* source = outline.source()) source->setNotes(std::move(notes));
}

}  // namespace

MarkdownText readMarkdownText(std::string_view text, MarkdownScope scope) {
  Outline unused;
  MarkdownText read{readHead(text, scope, unused), {}};
  const MarkdownBlockReader blocks(text, read.head.bodyBegin, read.head.indentation);
  forEachMarkdownRow(text, blocks, scope, {}, {},
                     [&](MarkdownRow&& row) { read.rows.push_back(std::move(row)); });
  return read;
}

std::vector<MarkdownRow> readMarkdownPart(std::string_view part, const MarkdownContext& context,
                                          Indentation indentation) {
  const std::string text = context.lines + std::string(part);
  std::vector<MarkdownRow> rows;
  forEachMarkdownRow(text, {text, 0, indentation}, MarkdownScope::file, {}, context,
                     [&](MarkdownRow&& row) { rows.push_back(std::move(row)); });
  return rows;
}

void readMarkdown(std::string_view text, const ReadOptions& options, Outline& outline) {
  readMarkdownAs(MarkdownScope::file, text, options, outline);
}

void readMarkdownRows(std::string_view text, const ReadOptions& options, Outline& outline) {
  readMarkdownAs(MarkdownScope::rows, text, options, outline);
}

}  // namespace vell::formats
