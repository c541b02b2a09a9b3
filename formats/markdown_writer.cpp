#include "formats/markdown_writer.h"

#include <algorithm>
#include <charconv>

#include "formats/inline_markdown.h"
#include "formats/markdown_blocks.h"
#include "formats/marked_line.h"

namespace vell::formats {
namespace {

constexpr std::size_t tabColumns = 4;
constexpr std::uint32_t maxOrdinal = 999'999'999;

/// The level a heading asks for, 0 where it asks for none.
std::size_t requestedLevel(const Row& row) {
  const std::string* level = markAttributeValue(row);
  const bool isLevel =
      row.type() == RowType::heading && level && level->size() == 1 && *level >= "1" && *level <= "6";
  return isLevel ? static_cast<std::size_t>(level->front() - '0') : 0;
}

bool asksAsBefore(const Row& row, const RowContent& read) {
  const std::string* now = row.attributes().find("level");
  const std::string* before = read.attributes.find("level");
  return now && before ? *now == *before : !now && !before;
}

std::size_t columnsOf(std::string_view prefix) {
  std::size_t columns = 0;
  for (const char c : prefix) columns = c == '\t' ? (columns / tabColumns + 1) * tabColumns : columns + 1;
  return columns;
}

/// The line without that prefix, as far as it has it.
std::string_view withoutPrefix(std::string_view line, std::string_view prefix) {
  for (const char c : prefix) {
    if (line.empty()) break;
    if (c == '>') {
      while (line.size() > 1 && line.front() == ' ') line.remove_prefix(1);
    }
    if (line.front() != c) break;
    line.remove_prefix(1);
  }
  return line;
}

/// The blanks behind the mark of a row, one where they could mean something else.
std::string gapOf(std::string_view own, MarkdownForm form) {
  std::size_t mark = 1;
  if (form == MarkdownForm::item) mark = std::max<std::size_t>(ordinalLength(own), 1);
  if (form == MarkdownForm::heading) mark = own.starts_with('#') ? runLength(own, 0) : own.size();
  const std::string_view rest = own.substr(mark);
  const std::string_view gap = rest.substr(0, indentBytes(rest));
  const bool isOdd = gap.size() > 4 || rest.size() == gap.size() || isBlank(rest[gap.size()]);
  return isOdd || (gap.empty() && form != MarkdownForm::quote) ? " " : std::string(gap);
}

std::string_view withoutEndBlanks(std::string_view prefix) {
  while (!prefix.empty() && prefix.back() != '>') prefix.remove_suffix(1);
  return prefix;
}

}  // namespace

std::string MarkdownWriter::write(std::span<const PlacedRow> rows) {
  isCopied_.resize(rows.size());
  for (at_ = 0; at_ < rows.size(); ++at_) {
    const PlacedRow& placed = rows[at_];
    next_ = at_ + 1 < rows.size() ? rows[at_ + 1] : PlacedRow{nullptr, 0};
    now_ = {placed.row, placed.depth, source_.find(*placed.row), next_.row && next_.depth > placed.depth};
    while (!open_.empty() && open_.back().depth >= placed.depth) open_.pop_back();
    leaveContainers();
    nesting_.leave(open_.size());
    siblings_.resize(placed.depth + 1);
    isCopied_[at_] = canCopy();
    if (isCopied_[at_]) {
      copy();
    } else {
      render();
    }
    previous_ = now_;
  }
  finish();
  return std::move(out_);
}

/// A row that tells its depth can stand behind the item or quote that its parent stands in.
void MarkdownWriter::leaveContainers() {
  const MarkdownRow* read = now_.read;
  if (!read || !read->toldDepth || caution() > 0 || !source_.isAsRead(*now_.row)) return;
  const auto isItsOwn = [&](const Open& open) {
    return open.read && source_.indexOf(*open.read) == read->container;
  };
  const auto own = std::find_if(open_.begin(), open_.end(), isItsOwn);
  if (read->container == MarkdownRow::none) {
    open_.clear();
  } else if (own != open_.end()) {
    open_.erase(own + 1, open_.end());
  }
}

bool MarkdownWriter::standsInItsContainer(const MarkdownRow& read) const {
  if (open_.empty()) return read.container == MarkdownRow::none;
  return open_.back().read && read.container == source_.indexOf(*open_.back().read);
}

bool MarkdownWriter::keepsPrefix(const MarkdownRow& read) const {
  const bool isTrusted = caution() == 0 || read.form != MarkdownForm::item;
  return isTrusted && standsInItsContainer(read) && (open_.empty() || open_.back().keepsPrefix);
}

bool MarkdownWriter::canCopy() const {
  const MarkdownRow* read = now_.read;
  if (!read || caution() > 0 || !source_.isAsRead(*now_.row)) return false;
  const bool isInQuote = !open_.empty() && open_.back().isQuote;
  if (isInQuote && read->form == MarkdownForm::paragraph && !standsInItsContainer(*read)) return false;
  const std::size_t deepest = previous_.row ? previous_.depth + 1 : 0;
  const std::size_t depth = read->toldDepth ? std::min(nesting_.base() + *read->toldDepth, deepest)
                                            : nesting_.depthOf(read->gathers ? read->level : 0);
  if (depth != now_.depth) return false;
  return read->form != MarkdownForm::heading || nesting_.enclosingAt(now_.depth) == read->enclosing;
}

/// The number of "#" of the row, and whether it asks for them.
MarkdownWriter::Level MarkdownWriter::headingLevel() const {
  const std::size_t enclosing = nesting_.enclosingAt(now_.depth);
  const std::size_t natural = naturalLevel(enclosing);
  const std::size_t requested = requestedLevel(*now_.row);
  const MarkdownRow* read = now_.read;
  const bool wasHeading =
      read && read->form == MarkdownForm::heading && read->content.type == RowType::heading;
  if (wasHeading && read->enclosing == enclosing && asksAsBefore(*now_.row, read->content)) {
    return {read->level, requested == read->level && requested != natural};
  }
  const bool isGranted = requested > enclosing && requested != natural;
  return {isGranted ? requested : natural, isGranted};
}

/// What stands in front of the row's lines.
std::string MarkdownWriter::prefix() const {
  if (now_.keepsPrefix) return source_.prefix(*now_.read);
  return open_.empty() ? "" : open_.back().childPrefix;
}

void MarkdownWriter::copy() {
  const MarkdownRow& read = *now_.read;
  now_.form = read.form;
  if (read.form == MarkdownForm::item) now_.listMark = listMark(source_.own(read));
  now_.keepsPrefix = keepsPrefix(read);
  const std::string prefix = this->prefix();
  now_.prefix = prefix;
  separate(prefix);
  appendLines(source_.own(read), now_.keepsPrefix ? prefix : source_.prefix(read), prefix);
  nesting_.place(now_.depth, read.gathers ? read.level : 0);
  noteMark();
  if (read.isContainer || read.form == MarkdownForm::item) openContainer(prefix);
}

void MarkdownWriter::render() {
  const MarkdownRow* read = now_.read;
  const Row& row = *now_.row;
  MarkdownRowStyle style;
  style.form = chooseForm();
  style.read = read;
  const bool keepsForm = read && read->form == style.form;
  style.isFirst = !previous_.row && !begun_;
  std::size_t section = 0;
  if (style.form == MarkdownForm::heading) {
    const Level heading = headingLevel();
    style.level = row.type() != RowType::heading ? std::max(heading.level, read->level) : heading.level;
    style.levelIsGranted = heading.isGranted;
    style.isSetext = keepsForm && style.level < 3 && !source_.own(*read).starts_with('#');
    style.tellsType = row.type() == RowType::heading && !now_.hasChildren && swallowsNext(style.level);
    section = style.tellsType ? 0 : style.level;
  }
  if (style.form == MarkdownForm::item) style.mark = itemMark();
  if (keepsForm) style.gap = gapOf(source_.own(*read), style.form);
  if (style.form == MarkdownForm::paragraph) style.tellsType = !open_.empty() && open_.back().isQuote;
  if (nesting_.depthOf(section) != now_.depth) style.depth = now_.depth - nesting_.base();
  if (style.form == MarkdownForm::verbatim && style.depth) style.form = naturalForm(row, style.depth);
  now_.form = style.form;
  if (style.form == MarkdownForm::item) now_.listMark = listMark(style.mark);
  now_.keepsPrefix = read && keepsPrefix(*read);
  const std::string prefix = this->prefix();
  std::string lines = writeMarkdownRow(row, style);
  // An item or quote without text would take a paragraph below it for its text.
  const bool isQuote = style.form == MarkdownForm::quote && keepsForm && read->isContainer;
  const bool isBare = style.form == MarkdownForm::item ? lines == style.mark : isQuote && lines == ">";
  if (isBare && now_.hasChildren) lines.append(" ").append(emptyMarkdownRow);
  separate(prefix);
  appendLines(lines, "", prefix);
  nesting_.place(now_.depth, section);
  noteMark();
  if (style.form == MarkdownForm::item || (keepsForm && read->isContainer)) openContainer(prefix);
}

/// Rows of the source keep the form on which their children depend.
MarkdownForm MarkdownWriter::chooseForm() const {
  const MarkdownRow* read = now_.read;
  const MarkdownForm natural = naturalForm(*now_.row);
  const bool isHeld = read && (read->form == natural || read->form == MarkdownForm::paragraph);
  const bool isBlock = natural == MarkdownForm::code || natural == MarkdownForm::verbatim;
  const bool isCareful = caution() == 1 && !now_.hasChildren && !isBlock;
  if (caution() > 1 || (isCareful && !(read && source_.isAsRead(*now_.row)))) return MarkdownForm::paragraph;
  if (!now_.hasChildren) return natural;
  const bool holdsChildren = read && (read->form == MarkdownForm::item || read->gathers ||
                                      (read->form == MarkdownForm::quote && read->isContainer));
  if (holdsChildren) return read->form;
  const bool isLine = natural == MarkdownForm::quote || natural == MarkdownForm::paragraph;
  return isLine && !isHeld ? MarkdownForm::item : natural;
}

/// A heading would take in the row behind it, which is to be copied.
bool MarkdownWriter::swallowsNext(std::size_t level) const {
  const MarkdownRow* next = next_.row ? source_.find(*next_.row) : nullptr;
  if (!next || next->toldDepth || !standsInItsContainer(*next)) return false;
  return !next->gathers || next->level > level;
}

/// The bullet or number that fits the rows beside it.
std::string MarkdownWriter::itemMark() const {
  const RowType type = now_.row->type();
  if (now_.read && now_.read->form == MarkdownForm::item) {
    const std::string_view own = source_.own(*now_.read);
    const std::size_t ordinal = ordinalLength(own);
    const bool isListed = type == RowType::task || type == RowType::unordered || type == RowType::ordered;
    const bool isOfKind = !isListed || (type == RowType::ordered) == (ordinal > 0);
    // Another mark could be wider, and the rows below it would have to move.
    if (isOfKind || now_.hasChildren) return std::string(own.substr(0, std::max<std::size_t>(ordinal, 1)));
  }
  const Sibling& before = siblings_.back();
  if (type != RowType::ordered)
    return std::string(1, before.bullet != '\0' ? before.bullet : source_.bullet());
  if (before.delimiter == '\0') return "1.";
  return std::to_string(std::min(before.number + before.step, maxOrdinal)) + before.delimiter;
}

/// Remembers the mark of the row that was written.
void MarkdownWriter::noteMark() {
  Sibling& sibling = siblings_.back();
  const std::string_view line = own();
  const std::size_t length = now_.form == MarkdownForm::item ? ordinalLength(line) : 0;
  now_.isBare = now_.form == MarkdownForm::item && line.size() == std::max<std::size_t>(length, 1);
  if (length == 0) {
    sibling = {now_.form == MarkdownForm::item ? line.front() : '\0'};
    return;
  }
  std::uint32_t number = 0;
  std::from_chars(line.data(), line.data() + length - 1, number);
  const bool repeats = sibling.delimiter != '\0' && sibling.number == number;
  sibling = {'\0', line[length - 1], number, repeats ? 0U : 1U};
}

void MarkdownWriter::openContainer(const std::string& prefix) {
  Open open{now_.depth, now_.read, now_.keepsPrefix, now_.form == MarkdownForm::quote, prefix};
  const auto asRead = now_.read && now_.keepsPrefix ? source_.childPrefix(*now_.read) : std::nullopt;
  if (asRead && now_.read->form == now_.form) {
    open.childPrefix = *asRead;
  } else if (now_.form == MarkdownForm::item) {
    open.keepsPrefix = false;
    const std::string_view line = own();
    const std::size_t mark = std::max<std::size_t>(ordinalLength(line), 1);
    const std::size_t blanks = indentColumns(line.substr(mark, line.find_first_of("\r\n") - mark));
    const std::size_t width = mark + (blanks > 0 && blanks <= tabColumns ? blanks : 1);
    const std::size_t columns = columnsOf(prefix);
    if (source_.indentsByTabs() && prefix.find_first_not_of('\t') == std::string::npos) {
      open.childPrefix.append((columns + width + tabColumns - 1) / tabColumns - columns / tabColumns, '\t');
    } else {
      open.childPrefix.append(width, ' ');
    }
  } else {
    open.keepsPrefix = false;
    open.childPrefix += now_.form == MarkdownForm::quote ? "> " : "\t";
  }
  open_.push_back(std::move(open));
  nesting_.enter(now_.depth);
}

/// Lines that have to end between the previous row and this one.
std::size_t MarkdownWriter::neededLineEnds() const {
  if (previous_.isBare && now_.depth > previous_.depth)
    return 1;  // an item begins with one blank line at most
  if (previous_.form != MarkdownForm::item || now_.form != MarkdownForm::item) return 2;
  const bool isFirstChild = now_.depth > previous_.depth;
  if (isFirstChild && previous_.row->text().empty()) return 2;
  const bool interrupts = !now_.row->text().empty() && (!now_.read || now_.row->type() != RowType::ordered);
  return isFirstChild && !interrupts ? 2 : 1;
}

/// An item that another list ends before.
bool MarkdownWriter::beginsAnotherList() const {
  const Sibling& before = siblings_.back();
  const char mark = before.bullet != '\0' ? before.bullet : before.delimiter;
  return mark != '\0' && now_.listMark != mark && now_.depth <= previous_.depth;
}

/// Lines that end between the two where the source does not tell.
std::size_t MarkdownWriter::lineEndsHere() const {
  const MarkdownRow* before = previous_.read;
  const MarkdownRow* read = now_.read;
  std::size_t ends = neededLineEnds();
  if (ends == 1) ends = std::max(before ? source_.listGap(*before) : 1, read ? source_.listGap(*read) : 1);
  const bool areItems = previous_.form == MarkdownForm::item && now_.form == MarkdownForm::item;
  const bool isInList = areItems && !beginsAnotherList();
  if (before && areItems && !isInList) ends = std::max(ends, source_.lineEndsBehind(*before));
  if (read && (before || !isInList)) ends = std::max(ends, source_.lineEndsBefore(*read));
  if (before && read) ends = std::max(ends, source_.lineEndsBehind(*before));
  return ends;
}

/// Begins the first row.
void MarkdownWriter::begin(const std::string& prefix) {
  const bool isHead = now_.read && now_.keepsPrefix && source_.indexOf(*now_.read) == 0;
  if (isHead) {
    out_ += source_.text().substr(source_.bodyBegin(), now_.read->span.begin - source_.bodyBegin());
  } else {
    if (begun_) out_ += source_.lineEnd();
    out_ += prefix;
  }
}

/// Ends a block of code that went on to the end of what it stands in.
void MarkdownWriter::closeFence() {
  const std::string_view fence = source_.openFence(*previous_.read);
  if (fence.empty()) return;
  out_ += source_.lineEnd();
  out_.append(previous_.prefix).append(fence);
}

/// Writes what stands between the previous row and this one, and in front of this one.
void MarkdownWriter::separate(const std::string& prefix) {
  const MarkdownRow* before = previous_.read;
  const MarkdownRow* read = now_.read;
  if (!previous_.row) {
    begin(prefix);
  } else {
    const bool isNext = before && read && read == before + 1;
    const std::string_view gap = isNext ? source_.between(*before, *read) : std::string_view();
    const std::size_t found = countLineEnds(gap);
    const bool bothStand = isNext && previous_.form == before->form && now_.form == read->form;
    const bool isWhole = found > 0 || isCopied_[at_ - 1];
    const bool fits = bothStand || (found > 0 && found >= neededLineEnds());
    if (isNext && now_.keepsPrefix && isWhole && fits) {
      out_ += gap;
    } else {
      if (isCopied_[at_ - 1]) closeFence();
      const std::size_t ends = bothStand && found > 0 ? found : std::max(lineEndsHere(), found);
      // A blank line in a quote that both stand in has its mark.
      const bool isInside = now_.depth > previous_.depth || !open_.empty();
      const std::string_view blank = isInside ? withoutEndBlanks(prefix) : std::string_view();
      std::size_t count = 0;
      if (before && !read && source_.isLast(*before)) {
        out_ += source_.behindLast();
        count = countLineEnds(source_.behindLast());
      }
      for (; count < ends; ++count) {
        if (count > 0) out_ += blank;
        out_ += source_.lineEnd();
      }
      out_ += prefix;
    }
  }
  ownBegin_ = out_.size();
}

void MarkdownWriter::appendLines(std::string_view lines, std::string_view oldPrefix,
                                 std::string_view newPrefix) {
  if (oldPrefix == newPrefix) {
    out_ += lines;
    return;
  }
  for (std::size_t at = 0; at <= lines.size();) {
    const std::size_t end = std::min(lines.find_first_of("\r\n", at), lines.size());
    std::string_view line = lines.substr(at, end - at);
    if (at > 0) {
      line = withoutPrefix(line, oldPrefix);
      out_ += source_.lineEnd();
      out_ += line.empty() ? withoutEndBlanks(newPrefix) : newPrefix;
    }
    out_ += line;
    at = end + (lines.substr(end).starts_with("\r\n") ? 2 : 1);
  }
}

/// The end of the text is as it was: with a line end or without.
void MarkdownWriter::finish() {
  const std::string_view tail = source_.behindLast();
  if (!previous_.row) {
    if (source_.read().rows.empty()) out_ += source_.text().substr(source_.bodyBegin());
    return;
  }
  if (previous_.read && source_.isLast(*previous_.read)) {
    out_ += tail;
  } else if (source_.text().empty() || countLineEnds(tail) > 0) {
    out_ += source_.lineEnd();
  }
}

}  // namespace vell::formats
