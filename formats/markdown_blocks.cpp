#include "formats/markdown_blocks.h"

#include <cmark-gfm-core-extensions.h>
#include <cmark-gfm.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "formats/inline_markdown.h"
#include "formats/markdown_columns.h"
#include "formats/marked_line.h"
#include "text/utf8.h"

namespace vell::formats {
namespace {

using Kind = MarkdownBlock::Kind;

constexpr std::size_t codeColumns = 4;
/// Containers in one another; what is deeper is kept as it stands.
constexpr std::size_t maxDepth = 10'000;
/// Rows in one another that indentation alone nests; what is deeper is code.
constexpr std::size_t maxNested = 64;

/// A container that is open on a line, and what it puts in front of what stands in it.
struct Container {
  Kind kind;
  std::size_t columns = 0;                    ///< of an item and of nested rows
  std::size_t line = std::string_view::npos;  ///< that its mark stands on, if it has one
  LineCursor behindMark;                      ///< on that line
};

/// False where the line goes on without the container's mark.
bool enter(const Container& container, std::size_t number, std::string_view line, LineCursor& cursor) {
  if (number == container.line) {
    cursor = container.behindMark;
    return true;
  }
  LineCursor ahead = cursor;
  if (container.kind != Kind::quote) {
    if (ahead.take(line, container.columns) < container.columns && ahead.at < line.size()) return false;
    cursor = ahead;
    return true;
  }
  ahead.take(line, codeColumns - 1);
  if (ahead.at == line.size() || line[ahead.at] != '>' || ahead.spare > 0) return false;
  ++ahead.at;
  ++ahead.column;
  ahead.take(line, 1);
  cursor = ahead;
  return true;
}

bool isSetextUnderline(std::string_view line) {
  line = trim(line);
  return !line.empty() && (line.front() == '=' || line.front() == '-') && runLength(line, 0) == line.size();
}

bool isAtxHeading(std::string_view line) {
  const std::size_t length = line.starts_with('#') ? runLength(line, 0) : 0;
  return length > 0 && length <= 6 && (line.size() == length || isBlank(line[length]));
}

bool isBlankLine(std::string_view line) { return trim(line).empty(); }

std::size_t count(std::string_view text, char c) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), c));
}

struct NodeDeleter {
  void operator()(cmark_node* node) const { cmark_node_free(node); }
  void operator()(cmark_parser* parser) const { cmark_parser_free(parser); }
  void operator()(cmark_iter* iterator) const { cmark_iter_free(iterator); }
};

std::unique_ptr<cmark_node, NodeDeleter> parse(const std::string& text) {
  cmark_gfm_core_extensions_ensure_registered();
  const std::unique_ptr<cmark_parser, NodeDeleter> parser(cmark_parser_new(CMARK_OPT_DEFAULT));
  cmark_parser_attach_syntax_extension(parser.get(), cmark_find_syntax_extension("table"));
  cmark_parser_feed(parser.get(), text.data(), text.size());
  return std::unique_ptr<cmark_node, NodeDeleter>(cmark_parser_finish(parser.get()));
}

/// Reads some lines of a text.
class BlockReader {
 public:
  BlockReader(std::string_view text, std::size_t from, std::size_t to, Indentation indentation)
      : text_(text), indentation_(indentation) {
    while (from < to) {
      const std::size_t end = std::min(text.find_first_of("\r\n", from), text.size());
      lines_.push_back({from, end});
      from = end + (text.substr(end).starts_with("\r\n") ? 2 : 1);
    }
  }

  std::vector<MarkdownBlock> read() {
    read(0, lines_.size());
    return std::move(blocks_);
  }

 private:
  struct Line {
    std::size_t begin, end;
  };
  struct Range {
    std::size_t first, last;
  };

  std::string_view line(std::size_t number) const {
    return text_.substr(lines_[number].begin, lines_[number].end - lines_[number].begin);
  }
  /// Where a line goes on behind the first `depth` containers, as far as they mark it.
  LineCursor behind(std::size_t number, std::size_t depth) const {
    if (depth > 0 && containers_[depth - 1].line == number) return containers_[depth - 1].behindMark;
    LineCursor cursor;
    for (std::size_t index = 0; index < depth; ++index) {
      if (!enter(containers_[index], number, line(number), cursor)) break;
    }
    return cursor;
  }
  bool isInside(std::size_t number) const {
    LineCursor cursor;
    const auto isEntered = [&](const Container& container) {
      return enter(container, number, line(number), cursor);
    };
    return std::all_of(containers_.begin(), containers_.end(), isEntered);
  }
  bool underlines(std::size_t number) const {
    LineCursor cursor = behind(number, containers_.size());
    const bool isIndented = cursor.takeAll(line(number)) >= codeColumns;
    return !isIndented && isInside(number) && isSetextUnderline(line(number).substr(cursor.at));
  }
  std::string content(std::size_t number) const {
    return behind(number, containers_.size()).rest(line(number));
  }

  void read(std::size_t first, std::size_t end);
  void addContainer(Kind kind, std::size_t number, std::size_t begin);
  void addLeaf(cmark_node* node, std::size_t offset);
  void addBlock(Kind kind, Range range, std::size_t begin, std::size_t level = 0);
  void addNested(Range range);
  std::size_t begin(cmark_node* node, std::size_t number) const;
  std::size_t fencedEnd(std::size_t first, std::size_t codeLines) const;

  std::string_view text_;
  Indentation indentation_;
  std::vector<Line> lines_;
  std::vector<Container> containers_;
  std::vector<MarkdownBlock> blocks_;
  std::size_t nested_ = 0;
};

/// What only matters within lines is hidden from the library: brackets would take link definitions out of the
/// text, and it drops a byte order mark wherever it begins.
void BlockReader::read(std::size_t first, std::size_t end) {
  const std::size_t outer = containers_.size();
  std::string source;
  for (std::size_t number = first; number < end; ++number) {
    source.append(behind(number, outer).rest(line(number))) += '\n';
  }
  for (std::size_t at = source.find('['); at != std::string::npos; at = source.find('[', at + 1)) {
    const std::string_view before = std::string_view(source).substr(0, at);
    if (!before.ends_with("<!") && !before.ends_with("<![CDATA")) source[at] = '(';
  }
  std::replace(source.begin(), source.end(), '\0', '0');
  if (source.starts_with(text::byteOrderMark)) source.replace(0, text::byteOrderMark.size(), "xxx");
  const auto root = parse(source);
  const std::unique_ptr<cmark_iter, NodeDeleter> iterator(cmark_iter_new(root.get()));
  cmark_event_type event;
  while ((event = cmark_iter_next(iterator.get())) != CMARK_EVENT_DONE) {
    cmark_node* node = cmark_iter_get_node(iterator.get());
    const cmark_node_type type = cmark_node_get_type(node);
    const bool isContainer = type == CMARK_NODE_BLOCK_QUOTE || type == CMARK_NODE_ITEM;
    if (event == CMARK_EVENT_EXIT) {
      if (isContainer) containers_.pop_back();
    } else if (isContainer) {
      const std::size_t number = first + static_cast<std::size_t>(cmark_node_get_start_line(node)) - 1;
      addContainer(type == CMARK_NODE_ITEM ? Kind::item : Kind::quote, number, begin(node, number));
    } else if (type != CMARK_NODE_DOCUMENT && type != CMARK_NODE_LIST) {
      addLeaf(node, first);
      cmark_iter_reset(iterator.get(), node, CMARK_EVENT_EXIT);
    }
  }
}

/// The library counts columns in bytes of the line as it got it.
std::size_t BlockReader::begin(cmark_node* node, std::size_t number) const {
  const std::size_t outer = nested_;
  const LineCursor cursor = behind(number, outer);
  const std::size_t column = static_cast<std::size_t>(std::max(cmark_node_get_start_column(node), 1)) - 1;
  return lines_[number].begin + cursor.at + column - std::min(cursor.spare, column);
}

void BlockReader::addContainer(Kind kind, std::size_t number, std::size_t begin) {
  const std::string_view whole = line(number);
  Container container{kind, 0, std::string_view::npos, {}};
  LineCursor cursor = behind(number, containers_.size());
  std::size_t end = begin + 1;
  if (kind == Kind::quote) {
    enter(container, number, whole, cursor);
  } else {
    container.columns = cursor.takeAll(whole);
    const std::size_t digits = ordinalLength(whole.substr(cursor.at));
    const std::size_t width = std::max<std::size_t>(digits, 1);
    end = begin + width;
    cursor.at += width;
    cursor.column += width;
    LineCursor text = cursor;
    const std::size_t blanks = text.takeAll(whole);
    const bool fits = blanks > 0 && blanks <= codeColumns && text.at < whole.size();
    container.columns += width + (fits ? blanks : 1);
    cursor.take(whole, fits ? blanks : 1);
  }
  container.line = number;
  container.behindMark = cursor;
  if (containers_.size() < maxDepth) blocks_.push_back({kind, containers_.size(), begin, end, begin, 0, {}});
  containers_.push_back(container);
}

/// The closing fence has a line of its own, unless its container ended before.
std::size_t BlockReader::fencedEnd(std::size_t first, std::size_t codeLines) const {
  const std::size_t next = first + codeLines + 1;
  if (next >= lines_.size() || !isInside(next)) return next - 1;
  const std::string opening = content(first);
  const std::string_view fence = trim(opening);
  return isClosingFence(content(next), fence.substr(0, runLength(fence, 0))) ? next : next - 1;
}

void BlockReader::addLeaf(cmark_node* node, std::size_t offset) {
  const auto numberOf = [offset](int number) { return offset + static_cast<std::size_t>(number) - 1; };
  const cmark_node_type type = cmark_node_get_type(node);
  const std::string_view kind = cmark_node_get_type_string(node);
  if (type == CMARK_NODE_PARAGRAPH && cmark_node_get_start_line(node) == 0) return;  // the table tells of it
  Range range{numberOf(cmark_node_get_start_line(node)), numberOf(cmark_node_get_end_line(node))};
  range.last = std::min(std::max(range.first, range.last), lines_.size() - 1);
  const std::size_t begin = this->begin(node, range.first);
  if (kind == "table") {
    cmark_node* last = cmark_node_last_child(node);
    const bool hasRows = last && last != cmark_node_first_child(node);
    if (hasRows) range.last = numberOf(cmark_node_get_start_line(last));
    std::size_t rows = 0;
    for (cmark_node* row = cmark_node_first_child(node); row; row = cmark_node_next(row)) ++rows;
    const std::size_t header = range.last - rows;
    const cmark_node* before = cmark_node_previous(node);
    const bool startsEarlier = before && cmark_node_get_start_line(const_cast<cmark_node*>(before)) == 0;
    if (startsEarlier && header > range.first) {
      addBlock(Kind::paragraph, {range.first, header - 1}, begin);
    }
    const LineCursor cursor = behind(header, containers_.size());
    const std::size_t blanks = indentBytes(line(header).substr(cursor.at));
    return addBlock(Kind::verbatim, {header, range.last}, lines_[header].begin + cursor.at + blanks);
  }
  switch (type) {
    case CMARK_NODE_CODE_BLOCK: {
      const std::size_t codeLines = count(cmark_node_get_literal(node), '\n');
      int length = 0;
      int indent = 0;
      char character = 0;
      if (cmark_node_get_fenced(node, &length, &indent, &character)) {
        range.last = fencedEnd(range.first, codeLines);
        return addBlock(Kind::fenced, range, begin);
      }
      range.last = range.first + std::max<std::size_t>(codeLines, 1) - 1;
      if (indentation_ == Indentation::rows && nested_ < maxNested) return addNested(range);
      const LineCursor cursor = behind(range.first, containers_.size());
      return addBlock(Kind::indented, range,
                      cursor.spare > 0 ? begin : lines_[range.first].begin + cursor.at);
    }
    case CMARK_NODE_HTML_BLOCK:
      range.last = range.first + std::max<std::size_t>(count(cmark_node_get_literal(node), '\n'), 1) - 1;
      return addBlock(Kind::verbatim, range, begin);
    case CMARK_NODE_HEADING: {
      const auto level = static_cast<std::size_t>(cmark_node_get_heading_level(node));
      range.last = range.first;
      if (isAtxHeading(text_.substr(begin, lines_[range.first].end - begin)))
        return addBlock(Kind::atxHeading, range, begin, level);
      while (++range.last + 1 < lines_.size() && !underlines(range.last)) continue;
      return addBlock(Kind::setextHeading, range, begin, level);
    }
    case CMARK_NODE_THEMATIC_BREAK:
      return addBlock(Kind::rule, {range.first, range.first}, begin);
    default:
      return addBlock(Kind::paragraph, range, begin);
  }
}

void BlockReader::addBlock(Kind kind, Range range, std::size_t begin, std::size_t level) {
  range.last = std::min(range.last, lines_.size() - 1);
  while (range.last > range.first && isBlankLine(content(range.last))) --range.last;
  MarkdownBlock block{
      kind, std::min(containers_.size(), maxDepth), begin, lines_[range.last].end, begin, level, {}};
  if (!containers_.empty() && containers_.back().kind == Kind::quote) {
    const LineCursor cursor = behind(range.first, containers_.size() - 1);
    const std::string_view rest = line(range.first).substr(cursor.at);
    const std::size_t blanks = indentBytes(rest);
    if (rest.substr(blanks).starts_with('>'))
      block.markBegin = lines_[range.first].begin + cursor.at + blanks;
  }
  for (std::size_t number = range.first; number <= range.last; ++number) {
    if (number > range.first) block.text += '\n';
    block.text += content(number);
  }
  blocks_.push_back(std::move(block));
}

/// Indented lines of a text of Vell: rows below the row before them.
void BlockReader::addNested(Range range) {
  const std::size_t begin = lines_[range.first].begin + behind(range.first, containers_.size()).at;
  blocks_.push_back({Kind::nested, containers_.size(), begin, begin, begin, 0, {}});
  containers_.push_back({Kind::nested, codeColumns, std::string_view::npos, {}});
  const std::size_t outer = std::exchange(nested_, containers_.size());
  read(range.first, range.last + 1);
  nested_ = outer;
  containers_.pop_back();
}

/// Bytes that are read at a time.
constexpr std::size_t stretch = 1 << 18;

std::size_t beginOfLine(std::string_view text, std::size_t at) {
  return text.substr(0, at).find_last_of("\r\n") + 1;
}

/// Behind the line that the byte stands in.
std::size_t endOfLine(std::string_view text, std::size_t at) {
  const std::size_t end = text.find_first_of("\r\n", at);
  if (end == std::string_view::npos) return text.size();
  return end + (text.substr(end).starts_with("\r\n") ? 2 : 1);
}

/// The last block that means the same without what stands before it; 0 where only the first one does.
std::size_t lastToBegin(const std::vector<MarkdownBlock>& blocks) {
  for (std::size_t at = blocks.size(); at-- > 1;) {
    const bool isIndented = blocks[at].kind == Kind::indented || blocks[at].kind == Kind::nested;
    if (blocks[at].depth == 0 && !isIndented) return at;
  }
  return 0;
}

bool leavesFormulaOpen(std::span<const MarkdownBlock> blocks) {
  return std::any_of(blocks.begin(), blocks.end(), [](const MarkdownBlock& block) {
    return block.depth == 0 && block.kind == Kind::paragraph && opensFormula(block.text);
  });
}

}  // namespace

/// A long list is one block of the library's, but each of its items begins anew.
std::vector<MarkdownBlock> MarkdownBlockReader::read() {
  for (std::size_t length = stretch; next_ < text_.size(); length *= 8) {
    const std::size_t from = next_;
    const std::size_t to = endOfLine(text_, from + std::min(length, text_.size() - from));
    std::vector<MarkdownBlock> blocks = BlockReader(text_, from, to, indentation_).read();
    std::size_t count = blocks.size();
    if (to < text_.size()) {
      count = lastToBegin(blocks);
      if (count == 0 || leavesFormulaOpen(std::span(blocks).first(count))) continue;
      next_ = beginOfLine(text_, blocks[count].begin);
    } else {
      next_ = to;
    }
    blocks.resize(count);
    return joinVerbatim(text_, std::move(blocks));
  }
  return {};
}

}  // namespace vell::formats
