#include "formats/markdown_blocks.h"

#include <algorithm>

#include "formats/inline_markdown.h"
#include "formats/markdown_columns.h"
#include "formats/markdown_source.h"
#include "formats/marked_line.h"

namespace vell::formats {
namespace {

using Kind = MarkdownBlock::Kind;

std::string linesOf(std::string_view text) {
  std::string lines;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find_first_of("\r\n", at), text.size());
    if (at > 0) lines += '\n';
    lines += text.substr(at, end - at);
    at = end + (text.substr(end).starts_with("\r\n") ? 2 : 1);
  }
  return lines;
}

/// How many blocks behind the one at `first` belong to it: what stands between `$$` and `$$`, and what a
/// footnote is continued with.
std::size_t countBelonging(const std::vector<MarkdownBlock>& blocks, std::size_t first) {
  const std::string_view text = blocks[first].text;
  std::size_t last = first;
  if (text.starts_with("[^") && isMarkdownDefinition(text)) {
    while (last + 1 < blocks.size() && blocks[last + 1].depth == 0 && blocks[last + 1].kind == Kind::indented)
      ++last;
  } else if (opensFormula(text)) {
    for (last = first + 1; last < blocks.size() && blocks[last].text.find("$$") == std::string::npos;
         ++last) {
      if (blocks[last].kind == Kind::fenced) return 0;
    }
    if (last == blocks.size() || (last + 1 < blocks.size() && blocks[last + 1].depth > 0)) return 0;
  }
  return last - first;
}

/// A trailer on the line below HTML that ended before: below a comment, or `</pre>`.
bool isTrailerOf(const MarkdownBlock& block, const MarkdownBlock& html, std::string_view text) {
  if (html.kind != Kind::verbatim || block.kind != Kind::paragraph || block.depth != html.depth) return false;
  if (!trim(html.text).starts_with('<') || countLineEnds(text.substr(html.end, block.begin - html.end)) != 1)
    return false;
  std::string_view line = block.text;
  RowTrailer trailer;
  return takeTrailer(line, Times::dropped, trailer) && trim(line).empty();
}

/// `$$ … $$`
bool isFormula(std::string_view text) {
  text = trimEnd(text);
  return text.size() > 3 && text.starts_with("$$") && text.ends_with("$$");
}

}  // namespace

bool opensFormula(std::string_view text) {
  return text.starts_with("$$") && text.find("$$", 2) == std::string_view::npos;
}

bool isMarkdownDefinition(std::string_view text) {
  text.remove_prefix(indentBytes(text));
  if (!text.starts_with('[')) return false;
  std::size_t at = 1;
  while (at < text.size() && text[at] != ']' && text[at] != '[') at += text[at] == '\\' ? 2 : 1;
  return at > 1 && at < text.size() && text.substr(at).starts_with("]:");
}

std::vector<MarkdownBlock> joinVerbatim(std::string_view text, std::vector<MarkdownBlock> blocks) {
  std::vector<MarkdownBlock> joined;
  for (std::size_t at = 0; at < blocks.size(); ++at) {
    if (!joined.empty() && isTrailerOf(blocks[at], joined.back(), text)) {
      joined.back().end = blocks[at].end;
      joined.back().text.append("\n").append(blocks[at].text);
      continue;
    }
    const bool canBegin = blocks[at].kind == Kind::paragraph && blocks[at].depth == 0;
    const std::size_t more = canBegin ? countBelonging(blocks, at) : 0;
    joined.push_back(std::move(blocks[at]));
    MarkdownBlock& block = joined.back();
    if (more > 0) {
      at += more;
      block.end = blocks[at].end;
      block.text = linesOf(text.substr(block.begin, block.end - block.begin));
    }
    if (more > 0 || (block.kind == Kind::paragraph && isFormula(block.text))) block.kind = Kind::verbatim;
  }
  return joined;
}

}  // namespace vell::formats
