#include <algorithm>
#include <array>
#include <limits>
#include <unordered_set>
#include <utility>

#include "formats/inline_markdown.h"
#include "formats/markdown_blocks.h"
#include "formats/markdown_columns.h"
#include "formats/markdown_format.h"
#include "formats/markdown_nesting.h"
#include "formats/marked_line.h"
#include "text/lines.h"

namespace vell::formats {
namespace {

using Block = MarkdownBlock;
using Kind = MarkdownBlock::Kind;

bool isMarked(std::string_view line, std::size_t length) {
  return line.size() == length || isBlank(line[length]);
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

/// The lines of a paragraph without their indentation; blanks at their ends can make a break a hard one.
std::string paragraphSource(std::string_view text) {
  std::string source;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    const std::string_view line = text.substr(at, end - at);
    if (at > 0) source += '\n';
    source += line.substr(indentBytes(line));
    at = end + 1;
  }
  return source;
}

/// All lines without the indentation of the first.
std::string withoutIndent(std::string_view text) {
  const std::size_t columns = indentColumns(text.substr(0, text.find('\n')));
  std::string lines;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    const std::string_view line = text.substr(at, end - at);
    if (at > 0) lines += '\n';
    lines += line.substr(indentBytes(line, columns));
    at = end + 1;
  }
  return lines;
}

/// Takes the closing "#" off an ATX heading.
void takeClosing(std::string_view& text) {
  const std::size_t end = text.find_last_not_of('#');
  if (end == std::string_view::npos) {
    text = {};
  } else if (end + 1 < text.size() && isBlank(text[end])) {
    text = trimEnd(text.substr(0, end));
  }
}

/// Makes rows of blocks.
class RowReader {
 public:
  RowReader(std::string_view text, MarkdownScope scope, const ReadOptions& options,
            const MarkdownContext& context)
      : text_(text), scope_(scope), options_(options), context_(context) {}

  /// The rows of the next blocks, which stand in none of the blocks before.
  std::vector<MarkdownRow> read(const std::vector<Block>& blocks);

 private:
  /// A container that the next block stands in.
  struct Open {
    const Block* block;
    std::uint32_t row;  ///< none: a quote without a row so far
  };

  void closeTo(std::size_t depth);
  void leaveContext();
  std::uint32_t addItem(const Block& block, const Block* first);
  std::uint32_t addQuote(const Block& block);
  void addEmptyQuote(Open& quote);
  void addBlock(const Block& block);
  void addBody(const Block& block);
  void addVerbatim(const Block& block);
  void addHeading(const Block& block);
  void addCode(const Block& block);

  MarkdownRow begin(MarkdownForm form, std::size_t from, std::size_t to);
  void setInline(MarkdownRow& row, std::string_view source);
  bool takeTrailer(MarkdownRow& row, std::string_view& source);
  std::uint32_t add(MarkdownRow row);

  std::string_view text_;
  MarkdownScope scope_;
  const ReadOptions& options_;
  const MarkdownContext& context_;
  bool isInContext_ = true;
  std::size_t maxDepth_ = 0;  ///< of the next row
  MarkdownNesting nesting_;
  std::vector<Open> open_;
  std::vector<MarkdownRow> rows_;  ///< of these blocks
  std::uint32_t before_ = 0;       ///< how many rows stand before those
  RowTrailer trailer_;             ///< of the row that is being read
  std::unordered_set<std::string> ids_;
};

std::vector<MarkdownRow> RowReader::read(const std::vector<Block>& blocks) {
  for (std::size_t at = 0; at < blocks.size(); ++at) {
    const Block& block = blocks[at];
    closeTo(block.depth);
    if (isInContext_ && block.begin >= context_.lines.size() && block.kind != Kind::nested) leaveContext();
    const bool isInQuote = !open_.empty() && open_.back().block->kind == Kind::quote;
    if (isInQuote && block.kind == Kind::paragraph) {
      addQuote(block);
      continue;
    }
    const bool isBreak = block.kind == Kind::verbatim && trim(block.text) == emptyMarkdownRow;
    if (isInQuote && open_.back().row == MarkdownRow::none) {
      addEmptyQuote(open_.back());
      if (isBreak) {
        rows_.back().span.end = block.end;
        continue;
      }
    }
    if (block.kind == Kind::quote) {
      open_.push_back({&block, MarkdownRow::none});
    } else if (block.kind == Kind::nested) {
      const bool isBelow = !rows_.empty();
      open_.push_back({&block, isBelow ? static_cast<std::uint32_t>(rows_.size() - 1) : MarkdownRow::none});
      nesting_.enter(isBelow ? rows_.back().depth : std::size_t(-1));
    } else if (block.kind == Kind::item) {
      const Block* first =
          at + 1 < blocks.size() && blocks[at + 1].depth > block.depth ? &blocks[at + 1] : nullptr;
      const bool isEmpty = first && first->kind == Kind::verbatim && trim(first->text) == emptyMarkdownRow;
      if (first && first->kind != Kind::paragraph && !isEmpty) first = nullptr;
      open_.push_back({&block, addItem(block, first)});
      nesting_.enter(rows_.back().depth);
      if (first) ++at;
    } else {
      addBlock(block);
    }
  }
  closeTo(0);
  before_ += static_cast<std::uint32_t>(rows_.size());
  return std::exchange(rows_, {});
}

void RowReader::closeTo(std::size_t depth) {
  while (open_.size() > depth) {
    Open& last = open_.back();
    if (last.block->kind == Kind::quote && last.row == MarkdownRow::none) addEmptyQuote(last);
    open_.pop_back();
  }
  nesting_.leave(std::min(nesting_.containers(), depth));
}

/// The rows behind the context stand where it says, in the items and quotes that its lines have opened.
void RowReader::leaveContext() {
  isInContext_ = false;
  if (context_.nesting.containers() == nesting_.containers()) nesting_ = context_.nesting;
  maxDepth_ = context_.maxDepth;
}

MarkdownRow RowReader::begin(MarkdownForm form, std::size_t from, std::size_t to) {
  MarkdownRow row;
  row.form = form;
  row.span.begin = from;
  row.span.end = to;
  row.content.created = row.content.modified = options_.time;
  trailer_ = {};
  return row;
}

bool RowReader::takeTrailer(MarkdownRow& row, std::string_view& source) {
  const std::string_view whole = trimEnd(source);
  if (!formats::takeTrailer(source, Times::dropped, trailer_)) return false;
  row.trailer = trim(whole.substr(source.size()));
  row.content.persistentId = std::move(trailer_.persistentId);
  row.content.attributes = std::move(trailer_.attributes);
  return true;
}

void RowReader::setInline(MarkdownRow& row, std::string_view source) {
  row.inlineSource = trim(source);
  row.content.text = parseInline(row.inlineSource, LineFeeds::breaks);
}

/// The type told in the trailer is set last: the mark's own attribute goes by the mark.
std::uint32_t RowReader::add(MarkdownRow row) {
  if (options_.eachRow != nullptr) options_.eachRow();
  if (trailer_.type) row.content.type = *trailer_.type;
  std::string& id = row.content.persistentId;
  if (!id.empty() && !ids_.insert(id).second) id.clear();
  // A heading that tells its type gathers nothing; another row that is written as one does.
  row.gathers = row.form == MarkdownForm::heading && trailer_.type != RowType::heading;
  constexpr std::size_t maxTold = std::numeric_limits<std::uint16_t>::max();
  if (trailer_.depth) row.toldDepth = static_cast<std::uint16_t>(std::min(*trailer_.depth, maxTold));
  const std::size_t level = row.gathers ? row.level : 0;
  const std::size_t depth = trailer_.depth ? nesting_.base() + *trailer_.depth : nesting_.depthOf(level);
  row.depth = static_cast<std::uint32_t>(std::min(depth, maxDepth_));
  maxDepth_ = row.depth + 1;
  row.enclosing = static_cast<std::uint8_t>(nesting_.enclosingAt(row.depth));
  if (row.form == MarkdownForm::heading && row.content.type == RowType::heading) {
    const bool isNatural = row.level == naturalLevel(row.enclosing);
    if (!isNatural && scope_ == MarkdownScope::file) setMarkAttribute(row.content, std::to_string(row.level));
  }
  nesting_.place(row.depth, level);
  for (std::size_t index = nesting_.containers(); index-- > 0 && row.container == MarkdownRow::none;) {
    row.container = open_[index].row;
  }
  if (row.container != MarkdownRow::none) {
    rows_[row.container].isContainer = true;
    row.container += before_;
  }
  rows_.push_back(std::move(row));
  return static_cast<std::uint32_t>(rows_.size() - 1);
}

std::uint32_t RowReader::addItem(const Block& block, const Block* first) {
  MarkdownRow row = begin(MarkdownForm::item, block.begin, first ? first->end : block.end);
  const bool isOrdered = ordinalLength(text_.substr(block.begin, block.end - block.begin)) > 0;
  row.content.type = isOrdered ? RowType::ordered : RowType::unordered;
  const std::string paragraph = first && first->kind == Kind::paragraph ? paragraphSource(first->text) : "";
  std::string_view source = paragraph;
  takeTrailer(row, source);
  constexpr std::array<std::string_view, 3> boxes = {"[ ]", "[x]", "[X]"};
  for (const std::string_view box : boxes) {
    if (isOrdered || !source.starts_with(box) || !isMarked(source, box.size())) continue;
    row.content.type = RowType::task;
    source = source.substr(box.size());
    if (box != boxes.front()) setMarkAttribute(row.content, "true");
    break;
  }
  setInline(row, source);
  return add(std::move(row));
}

/// A paragraph in a quote. One that tells its type stands below the quote's row.
std::uint32_t RowReader::addQuote(const Block& block) {
  Open& quote = open_.back();
  const bool isFirst = quote.row == MarkdownRow::none;
  MarkdownRow row = begin(MarkdownForm::quote, block.markBegin, block.end);
  row.content.type = RowType::quote;
  const std::string paragraph = paragraphSource(block.text);
  std::string_view source = paragraph;
  takeTrailer(row, source);
  if (!isFirst && trailer_.type) {
    row.form = MarkdownForm::paragraph;
    row.span.begin = block.begin;
    setInline(row, source);
    return add(std::move(row));
  }
  if (source.starts_with(noteMark) && isMarked(source, noteMark.size())) {
    row.content.type = RowType::note;
    source = source.substr(noteMark.size());
  }
  setInline(row, source);
  nesting_.leave(open_.size() - 1);
  quote.row = add(std::move(row));
  nesting_.enter(rows_.back().depth);
  return quote.row;
}

void RowReader::addEmptyQuote(Open& quote) {
  MarkdownRow row = begin(MarkdownForm::quote, quote.block->begin, quote.block->end);
  row.content.type = RowType::quote;
  quote.row = add(std::move(row));
  nesting_.enter(rows_.back().depth);
}

void RowReader::addBlock(const Block& block) {
  switch (block.kind) {
    case Kind::paragraph:
      return isMarkdownDefinition(block.text) ? addVerbatim(block) : addBody(block);
    case Kind::atxHeading:
    case Kind::setextHeading:
      return addHeading(block);
    case Kind::rule: {
      MarkdownRow row = begin(MarkdownForm::rule, block.begin, block.end);
      row.content.type = RowType::hr;
      return void(add(std::move(row)));
    }
    case Kind::fenced:
    case Kind::indented:
      return addCode(block);
    default:
      return addVerbatim(block);
  }
}

void RowReader::addBody(const Block& block) {
  MarkdownRow row = begin(MarkdownForm::paragraph, block.begin, block.end);
  const std::string paragraph = paragraphSource(block.text);
  std::string_view source = paragraph;
  takeTrailer(row, source);
  if (isRule(source)) {  // a trailer made a paragraph of it
    row.form = MarkdownForm::rule;
    row.content.type = RowType::hr;
    source = {};
  }
  setInline(row, source);
  add(std::move(row));
}

/// Its trailer has a line of its own.
void RowReader::addVerbatim(const Block& block) {
  MarkdownRow row = begin(MarkdownForm::verbatim, block.begin, block.end);
  const std::string lines = withoutIndent(block.text);
  std::string_view text = lines;
  if (trim(text) == emptyMarkdownRow) {
    row.form = MarkdownForm::paragraph;
    return void(add(std::move(row)));
  }
  const std::size_t last = text.rfind('\n');
  std::string_view end = last == std::string_view::npos ? std::string_view() : text.substr(last + 1);
  takeTrailer(row, end);
  if (!trim(end).empty()) {
    row.content.persistentId.clear();
    row.content.attributes = {};
    row.trailer.clear();
    trailer_ = {};
  } else if (last != std::string_view::npos) {
    text = text.substr(0, last);
  }
  row.content.text = Text(std::string(text));
  add(std::move(row));
}

void RowReader::addHeading(const Block& block) {
  MarkdownRow row = begin(MarkdownForm::heading, block.begin, block.end);
  row.content.type = RowType::heading;
  row.level = static_cast<std::uint8_t>(block.level);
  const bool isAtx = block.kind == Kind::atxHeading;
  const std::string_view text = std::string_view(block.text).substr(indentBytes(block.text));
  const std::string heading =
      isAtx ? std::string(trim(text.substr(block.level))) : paragraphSource(text.substr(0, text.rfind('\n')));
  std::string_view source = heading;
  const bool hasTrailer = takeTrailer(row, source);
  if (isAtx) takeClosing(source);
  if (isAtx && !hasTrailer) takeTrailer(row, source);
  setInline(row, source);
  add(std::move(row));
}

void RowReader::addCode(const Block& block) {
  MarkdownRow row = begin(MarkdownForm::code, block.begin, block.end);
  row.content.type = RowType::code;
  std::string code;
  std::size_t indent = 4;
  text::Lines lines(block.text);
  std::string_view fence;
  if (block.kind == Kind::fenced) {
    lines.next();
    indent = indentColumns(lines.line());
    const std::string_view opening = trim(lines.line());
    row.inlineSource = opening;
    fence = opening.substr(0, runLength(opening, 0));
    std::string_view info = trim(opening.substr(fence.size()));
    takeTrailer(row, info);
    if (!info.empty()) setMarkAttribute(row.content, info);
  }
  for (bool isFirst = true; lines.next(); isFirst = false) {
    std::string_view line = lines.line();
    if (!fence.empty() && isClosingFence(line, fence)) break;
    if (!isFirst) code += '\n';
    code += line.substr(indentBytes(line, indent));
  }
  row.content.text = Text(std::move(code));
  add(std::move(row));
}

}  // namespace

void forEachMarkdownRow(std::string_view text, MarkdownBlockReader blocks, MarkdownScope scope,
                        const ReadOptions& options, const MarkdownContext& context,
                        const std::function<void(MarkdownRow&&)>& take) {
  RowReader reader(text, scope, options, context);
  for (auto read = blocks.read(); !read.empty(); read = blocks.read()) {
    for (MarkdownRow& row : reader.read(read)) take(std::move(row));
  }
}

}  // namespace vell::formats
