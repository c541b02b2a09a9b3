#include "formats/document_header.h"
#include "formats/markdown_writer.h"

namespace vell::formats {
namespace {

/// The first row that reads otherwise; none where all are read as they are.
std::optional<std::size_t> findMisread(std::span<const PlacedRow> rows, const MarkdownText& read) {
  for (std::size_t at = 0; at < std::max(rows.size(), read.rows.size()); ++at) {
    if (at >= rows.size() || at >= read.rows.size()) return std::min(at, rows.size() - 1);
    const bool isSame =
        read.rows[at].depth == rows[at].depth && says(*rows[at].row, read.rows[at].content, Times::dropped);
    if (!isSame) return at;
  }
  return std::nullopt;
}

/// The row to be written more carefully because the one at `misread` is not read as it is: a row that is
/// written anew, close before it, rather than one that stands as it stood.
std::optional<std::size_t> findSuspect(const MarkdownWriter& writer, const Cautions& cautions,
                                       std::size_t misread) {
  for (std::size_t at = std::min(misread + 2, cautions.size()); at-- > 0;) {
    if (!writer.isCopied(at) && cautions[at] == 0) return at;
    if (misread - std::min(misread, at) > 8) break;
  }
  for (std::size_t at = misread + 1; at-- > 0;) {
    if (cautions[at] < 2) return at;
    if (misread - at > 8) break;
  }
  return std::nullopt;
}

/// What stands before the rows.
std::string header(const Outline& outline, const MarkdownSource& source) {
  const MarkdownText& read = source.read();
  const std::string before(source.text().substr(0, read.bodyBegin));
  const std::string_view old =
      std::string_view(before).substr(read.headerBegin, read.headerEnd - read.headerBegin);
  const std::string lines = DocumentHeader(HeaderKind::yaml).update(old, outline);
  if (lines == old) return before;
  if (read.headerEnd > 0) return before.substr(0, read.headerBegin) + lines + before.substr(read.headerEnd);
  const std::string rule = "---" + std::string(source.lineEnd());
  return before + rule + lines + rule;
}

}  // namespace

void writeMarkdown(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out) {
  std::string header;
  if (!rowsOnly) DocumentHeader(HeaderKind::yaml).write(header, outline);
  if (!header.empty()) out.append("---\n").append(header).append("---\n");
  out += MarkdownWriter(MarkdownSource(), !header.empty()).write(rows);
}

/// What was written is read again: a row that is misread is written with more care.
std::string updateMarkdown(const Outline& outline) {
  constexpr int maxAttempts = 24;
  const MarkdownSource source(outline);
  const PlacedRows rows = placeAll(outline);
  const std::string head = header(outline, source);
  Cautions cautions(rows.size());
  for (int attempt = 0; attempt < maxAttempts; ++attempt) {
    MarkdownWriter writer(source, source.read().headerEnd > 0 || head.size() > 3, cautions);
    std::string text = head + writer.write(rows);
    const auto misread = findMisread(rows, readMarkdownText(text, MarkdownScope::file));
    if (!misread) return text;
    if (rows.empty()) break;
    const auto suspect = findSuspect(writer, cautions, *misread);
    if (!suspect) break;
    ++cautions[*suspect];
  }
  return head + MarkdownWriter(MarkdownSource(), !head.empty()).write(rows);
}

}  // namespace vell::formats
