#include "formats/markdown_writer.h"

#include <algorithm>
#include <charconv>

#include "formats/inline_markdown.h"
#include "formats/markdown_columns.h"
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

bool asksAsBefore(const Row& row, const RowContent* original) {
  if (!original) return true;
  const std::string* now = row.attributes().find("level");
  const std::string* before = original->attributes.find("level");
  return now && before ? *now == *before : !now && !before;
}

std::size_t columnsOf(std::string_view prefix) {
  std::size_t columns = 0;
  for (const char c : prefix) columns = c == '\t' ? (columns / tabColumns + 1) * tabColumns : columns + 1;
  return columns;
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

/// The mark of a quote takes in a blank of what follows it.
std::string openedPrefix(const std::string& prefix) { return prefix.ends_with('>') ? prefix + ' ' : prefix; }

/// The column at which the text of an item begins, and the rows in it.
std::size_t contentColumn(std::string_view prefix, std::string_view own) {
  const std::string_view line = own.substr(0, own.find_first_of("\r\n"));
  const std::size_t mark = std::max<std::size_t>(ordinalLength(line), 1);
  const std::string_view blanks = line.substr(mark, indentBytes(line.substr(mark)));
  std::string before = std::string(prefix) + std::string(mark, ' ');
  const std::size_t begin = columnsOf(before);
  const std::size_t column = columnsOf(before.append(blanks));
  const bool fits = column > begin && column <= begin + tabColumns && line.size() > mark + blanks.size();
  return fits ? column : begin + 1;
}

}  // namespace

void MarkdownWriter::enter(const PlacedRow& row, const PlacedRow& next, unsigned caution) {
  caution_ = caution;
  next_ = next;
  now_ = {row.row, row.depth, source_.find(*row.row), next.row && next.depth > row.depth};
  while (!open_.empty() && open_.back().depth >= row.depth) open_.pop_back();
  leaveContainers();
  nesting_.leave(open_.size());
  siblings_.resize(row.depth + 1);
  now_.isCopied = canCopy();
  now_.containers = open_.size();
}

void MarkdownWriter::write() {
  if (now_.isCopied) {
    copy();
  } else {
    render();
  }
  previous_ = now_;
}

/// Each row that opens an item or a quote, and an empty line, which ends its paragraph.
MarkdownContext MarkdownWriter::context() const {
  MarkdownContext context{{}, nesting_, previous_.row ? previous_.depth + 1 : 0};
  for (const Open& open : open_) {
    const std::string_view own = std::string_view(out_).substr(open.begin, open.end - open.begin);
    context.lines.append(open.prefix).append(own);
    if (isBareMark(open.form, own)) {
      const std::string_view behind = std::string_view(out_).substr(open.end);
      const std::string_view blanks = behind.substr(0, indentBytes(behind));
      const bool isFollowed = behind.find_first_of("\r\n") > blanks.size();
      const bool fits =
          isFollowed && blanks.size() < behind.size() && !blanks.empty() && blanks.size() <= tabColumns;
      context.lines.append(fits ? blanks : " ").append(emptyMarkdownRow);
    }
    context.lines.append("\n").append(withoutEndBlanks(open.childPrefix)).append("\n");
  }
  return context;
}

/// A row that tells its depth can stand behind the item or quote that its parent stands in.
void MarkdownWriter::leaveContainers() {
  const MarkdownPlace* read = now_.read;
  if (!read || !read->toldDepth || caution_ > 0 || !source_.isAsRead(*now_.row)) return;
  const auto isItsOwn = [&](const Open& open) {
    return open.read && source_.indexOf(*open.read) == read->container;
  };
  const auto own = std::find_if(open_.begin(), open_.end(), isItsOwn);
  if (read->container == MarkdownPlace::none) {
    open_.clear();
  } else if (own != open_.end()) {
    open_.erase(own + 1, open_.end());
  }
}

bool MarkdownWriter::standsInItsContainer(const MarkdownPlace& read) const {
  if (open_.empty()) return read.container == MarkdownPlace::none;
  return open_.back().read && read.container == source_.indexOf(*open_.back().read);
}

bool MarkdownWriter::keepsPrefix(const MarkdownPlace& read) const {
  const bool isTrusted = caution_ == 0 || (caution_ == 1 && read.form != MarkdownForm::item);
  return isTrusted && standsInItsContainer(read) && (open_.empty() || open_.back().keepsPrefix);
}

bool MarkdownWriter::canCopy() const {
  const MarkdownPlace* read = now_.read;
  if (!read || caution_ > 0 || !source_.isAsRead(*now_.row)) return false;
  const bool isInQuote = !open_.empty() && open_.back().form == MarkdownForm::quote;
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
  const MarkdownPlace* read = now_.read;
  const RowContent* original = read ? source_.original(*now_.row) : nullptr;
  const RowType type = original ? original->type : now_.row->type();
  const bool wasHeading = read && read->form == MarkdownForm::heading && type == RowType::heading;
  if (wasHeading && read->enclosing == enclosing && asksAsBefore(*now_.row, original)) {
    return {read->level, requested == read->level && requested != natural};
  }
  const bool isGranted = requested > enclosing && requested != natural;
  return {isGranted ? requested : natural, isGranted};
}

/// What stands in front of the row's lines.
std::string MarkdownWriter::prefix() const {
  if (now_.keepsPrefix) return source_.prefix(*now_.read);
  if (open_.empty()) return "";
  return caution_ > 1 ? plainPrefix(open_.back()) : open_.back().childPrefix;
}

void MarkdownWriter::copy() {
  const MarkdownPlace& read = *now_.read;
  now_.form = read.form;
  if (read.form == MarkdownForm::item) now_.listMark = listMark(source_.own(read));
  now_.keepsPrefix = keepsPrefix(read);
  now_.prefix = prefix();
  separate(now_.prefix);
  appendLines(source_.own(read), now_.keepsPrefix ? now_.prefix : source_.prefix(read), now_.prefix);
  nesting_.place(now_.depth, read.gathers ? read.level : 0);
  noteMark();
  if (read.isContainer || read.form == MarkdownForm::item) openContainer();
}

void MarkdownWriter::render() {
  const MarkdownPlace* read = now_.read;
  const Row& row = *now_.row;
  MarkdownRowStyle style;
  style.form = chooseForm();
  const std::optional<MarkdownRow> again = read ? std::optional(source_.readAgain(row, *read)) : std::nullopt;
  style.read = again ? &*again : nullptr;
  const bool keepsForm = read && read->form == style.form;
  style.isFirst = !previous_.row && !begun_;
  std::size_t section = 0;
  if (style.form == MarkdownForm::heading) {
    const Level heading = headingLevel();
    style.level =
        row.type() != RowType::heading ? std::max<std::size_t>(heading.level, read->level) : heading.level;
    style.levelIsGranted = heading.isGranted;
    style.isSetext = keepsForm && style.level < 3 && !source_.own(*read).starts_with('#');
    style.tellsType = row.type() == RowType::heading && !now_.hasChildren && swallowsNext(style.level);
    section = style.tellsType ? 0 : style.level;
  }
  if (style.form == MarkdownForm::item) style.mark = itemMark();
  if (keepsForm) style.gap = gapOf(source_.own(*read), style.form);
  if (style.form == MarkdownForm::paragraph)
    style.tellsType = !open_.empty() && open_.back().form == MarkdownForm::quote;
  if (nesting_.depthOf(section) != now_.depth) style.depth = now_.depth - nesting_.base();
  if (style.form == MarkdownForm::verbatim && style.depth) style.form = naturalForm(row, style.depth);
  now_.form = style.form;
  if (style.form == MarkdownForm::item) now_.listMark = listMark(style.mark);
  now_.keepsPrefix = read && keepsPrefix(*read);
  now_.prefix = prefix();
  std::string lines = writeMarkdownRow(row, style);
  // An item or quote without text would take a paragraph below it for its text.
  const bool isQuote = style.form == MarkdownForm::quote && keepsForm && read->isContainer;
  const bool isBare = style.form == MarkdownForm::item ? lines == style.mark : isQuote && lines == ">";
  if (isBare && now_.hasChildren) lines.append(" ").append(emptyMarkdownRow);
  separate(now_.prefix);
  appendLines(lines, "", now_.prefix);
  nesting_.place(now_.depth, section);
  noteMark();
  if (style.form == MarkdownForm::item || (keepsForm && read->isContainer)) openContainer();
}

/// Rows of the source keep the form on which their children depend.
MarkdownForm MarkdownWriter::chooseForm() const {
  const MarkdownPlace* read = now_.read;
  const MarkdownForm natural = naturalForm(*now_.row);
  const bool isHeld = read && (read->form == natural || read->form == MarkdownForm::paragraph);
  const bool isBlock = natural == MarkdownForm::code || natural == MarkdownForm::verbatim;
  const bool isCareful = caution_ == 1 && !now_.hasChildren && !isBlock;
  if (caution_ > 1 || (isCareful && !(read && source_.isAsRead(*now_.row)))) return MarkdownForm::paragraph;
  if (!now_.hasChildren) return natural;
  const bool holdsChildren = read && (read->form == MarkdownForm::item || read->gathers ||
                                      (read->form == MarkdownForm::quote && read->isContainer));
  if (holdsChildren) return read->form;
  const bool isLine = natural == MarkdownForm::quote || natural == MarkdownForm::paragraph;
  return isLine && !isHeld ? MarkdownForm::item : natural;
}

/// A heading would take in the row behind it, which is to be copied.
bool MarkdownWriter::swallowsNext(std::size_t level) const {
  const MarkdownPlace* next = next_.row ? source_.find(*next_.row) : nullptr;
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

/// The mark that the next sibling goes by, behind a row of that form and its sibling before.
MarkdownWriter::Sibling MarkdownWriter::siblingOf(MarkdownForm form, std::string_view own,
                                                  const Sibling& before) {
  if (form != MarkdownForm::item) return {};
  const std::size_t length = ordinalLength(own);
  if (length == 0) return {own.front()};
  std::uint32_t number = 0;
  std::from_chars(own.data(), own.data() + length - 1, number);
  const bool repeats = before.delimiter != '\0' && before.number == number;
  return {'\0', own[length - 1], number, repeats ? 0U : 1U};
}

/// Remembers the mark of the row that was written.
void MarkdownWriter::noteMark() {
  const std::string_view own = this->own();
  now_.isBare = isBareMark(now_.form, own);
  siblings_.back() = siblingOf(now_.form, own, siblings_.back());
}

/// The least that stands in front of rows in an item, a quote or a row that indentation nests them in.
std::string MarkdownWriter::plainPrefix(const Open& open) const {
  if (open.form == MarkdownForm::quote) return open.prefix + "> ";
  if (open.form != MarkdownForm::item) return open.prefix + "\t";
  const std::string_view own = std::string_view(out_).substr(open.begin, open.end - open.begin);
  const std::size_t columns = contentColumn(open.prefix, own) - columnsOf(open.prefix);
  return openedPrefix(open.prefix) + std::string(columns, ' ');
}

void MarkdownWriter::openContainer() {
  const MarkdownPlace* read = now_.read;
  Open open{now_.depth,  read,        now_.keepsPrefix, now_.keepsPrefix, now_.form,
            now_.prefix, now_.prefix, ownBegin_,        out_.size()};
  const auto asRead = read && now_.keepsPrefix ? source_.childPrefix(*read) : std::nullopt;
  if (asRead && read->form == now_.form) {
    open.childPrefix = *asRead;
  } else if (now_.form == MarkdownForm::item) {
    open.keepsPrefix = open.isAsRead = false;
    open.childPrefix = openedPrefix(now_.prefix);
    const std::size_t columns = columnsOf(now_.prefix);
    const std::size_t column = contentColumn(now_.prefix, own());
    if (source_.indentsByTabs() && now_.prefix.find_first_not_of('\t') == std::string::npos) {
      open.childPrefix.append((column + tabColumns - 1) / tabColumns - columns / tabColumns, '\t');
    } else {
      open.childPrefix.append(column - columns, ' ');
    }
  } else {
    open.keepsPrefix = open.isAsRead = false;
    open.childPrefix += now_.form == MarkdownForm::quote ? "> " : "\t";
  }
  open_.push_back(std::move(open));
  nesting_.enter(now_.depth);
}

void MarkdownWriter::appendLines(std::string_view lines, std::string_view oldPrefix,
                                 std::string_view newPrefix) {
  if (oldPrefix == newPrefix) {
    out_ += lines;
    return;
  }
  out_ += reindented(lines, oldPrefix, newPrefix, source_.lineEnd());
}

bool MarkdownWriter::beginsLine() const {
  if (!previous_.beginsLine || previous_.isBare) return false;
  std::string_view outer;
  for (std::size_t index = 0; index <= previous_.containers; ++index) {
    const std::string_view inner = index < previous_.containers ? open_[index].prefix : previous_.prefix;
    if (!inner.starts_with(outer)) return false;
    if (index == 0 && (inner.size() >= tabColumns || inner.find_first_not_of(' ') != inner.npos))
      return false;
    outer = inner;
  }
  return true;
}

bool MarkdownWriter::standsAsItStood() const {
  const auto isAsRead = [this](const Open& open) {
    if (!open.isAsRead || open.form != MarkdownForm::item) return open.isAsRead;
    const std::string_view before = source_.text().substr(source_.span(*open.read).begin);
    return contentColumn(open.prefix, std::string_view(out_).substr(open.begin)) ==
           contentColumn(open.prefix, before);
  };
  if (!previous_.isCopied || !previous_.keepsPrefix) return false;
  if (!std::all_of(open_.begin(), open_.begin() + static_cast<std::ptrdiff_t>(previous_.containers),
                   isAsRead))
    return false;
  MarkdownNesting nesting = nesting_;
  nesting.leave(previous_.containers);
  return nesting == source_.nestingBehind(*previous_.read);
}

void MarkdownWriter::copyThrough(const PlacedRow& last, const PlacedRow& next) {
  const MarkdownPlace& read = *source_.find(*last.row);
  const std::size_t from = previous_.row ? source_.span(*previous_.read).end : source_.head().bodyBegin;
  const auto shifted = [&, size = out_.size()](std::size_t at) { return size + at - from; };
  out_ += source_.text().substr(from, source_.span(read).end - from);
  ownBegin_ = shifted(source_.span(read).begin);

  std::size_t open = 0;
  for (const MarkdownPlace* container : source_.containersOf(read)) {
    const bool isOpen = open < open_.size() && open_[open].read == container;
    if (!isOpen) {
      open_.resize(open);
      const SourceSpan& span = source_.span(*container);
      open_.push_back({container->depth, container, true, true, container->form, source_.prefix(*container),
                       *source_.childPrefix(*container), shifted(span.begin), shifted(span.end)});
    }
    ++open;
  }
  open_.resize(open);
  nesting_ = source_.nestingBehind(read);
  siblings_.resize(last.depth + 1);
  const Row* row = last.row;
  for (std::size_t depth = siblings_.size(); depth-- > 0; row = row->parent())
    siblings_[depth] = siblingAsRead(*row);

  now_ = {last.row, last.depth, &read, next.row && next.depth > last.depth, read.form};
  now_.keepsPrefix = now_.isCopied = true;
  now_.containers = open;
  now_.prefix = source_.prefix(read);
  now_.isBare = isBareMark(read.form, source_.own(read));
  if (read.form == MarkdownForm::item) now_.listMark = listMark(source_.own(read));
  if (read.isContainer || read.form == MarkdownForm::item) openContainer();
  previous_ = now_;
}

MarkdownWriter::Sibling MarkdownWriter::siblingAsRead(const Row& row) const {
  const MarkdownPlace* read = source_.find(row);
  const MarkdownPlace* before = row.previous() ? source_.find(*row.previous()) : nullptr;
  if (!read) return {};
  return siblingOf(read->form, source_.own(*read),
                   before ? siblingOf(before->form, source_.own(*before), {}) : Sibling());
}

}  // namespace vell::formats
