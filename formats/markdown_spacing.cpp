#include <algorithm>

#include "formats/markdown_writer.h"

// What stands between rows, in front of the first and behind the last one.
namespace vell::formats {

/// Lines that have to end between the previous row and this one.
std::size_t MarkdownWriter::neededLineEnds() const {
  const bool isInItem = previous_.form == MarkdownForm::item && now_.depth > previous_.depth;
  if (previous_.isBare && isInItem) return 1;  // an item begins with one blank line at most
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

/// Begins or ends a new block in an item. A blank line, which blocks of these forms do without, would make
/// the whole list a loose one.
bool MarkdownWriter::keepsListTight() const {
  const auto isItem = [this](const Current& row) {
    return row.form == MarkdownForm::item && !row.isBare && row.read && source_.listGap(*row.read) == 1;
  };
  const auto isNewBlock = [](const Current& row) {
    const bool needsNoBlankLine = row.form == MarkdownForm::heading || row.form == MarkdownForm::code ||
                                  row.form == MarkdownForm::quote;
    return needsNoBlankLine && !row.read;
  };
  if (caution_ > 0) return false;
  if (isNewBlock(now_)) return isItem(previous_) && now_.depth > previous_.depth;
  return isNewBlock(previous_) && isItem(now_) && now_.depth < previous_.depth;
}

/// Lines that end between the two where the source does not tell.
std::size_t MarkdownWriter::lineEndsHere() const {
  if (keepsListTight()) return 1;
  const MarkdownPlace* before = previous_.read;
  const MarkdownPlace* read = now_.read;
  std::size_t ends = neededLineEnds();
  if (ends == 1) ends = std::max(before ? source_.listGap(*before) : 1, read ? source_.listGap(*read) : 1);
  const bool areItems = previous_.form == MarkdownForm::item && now_.form == MarkdownForm::item;
  const bool isInList = areItems && !beginsAnotherList();
  // A list that rows come into from elsewhere stays tight or loose.
  if (before && read && isInList && !source_.areInOneList(*before, *read)) return ends;
  if (before && areItems && !isInList) ends = std::max(ends, source_.lineEndsBehind(*before));
  if (read && (before || !isInList)) ends = std::max(ends, source_.lineEndsBefore(*read));
  if (before && read) ends = std::max(ends, source_.lineEndsBehind(*before));
  return ends;
}

/// Begins the first row.
void MarkdownWriter::begin(const std::string& prefix) {
  const bool isHead = now_.read && now_.keepsPrefix && source_.indexOf(*now_.read) == 0;
  if (isHead) {
    out_ += source_.text().substr(source_.head().bodyBegin,
                                  source_.span(*now_.read).begin - source_.head().bodyBegin);
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
  const MarkdownPlace* before = previous_.read;
  const MarkdownPlace* read = now_.read;
  const std::size_t end = out_.size();
  if (!previous_.row) {
    begin(prefix);
  } else {
    const bool isNext = before && read && read == before + 1;
    const std::string_view gap = isNext ? source_.between(*before, *read) : std::string_view();
    const std::size_t found = countLineEnds(gap);
    // A trailer below HTML that has ended is a paragraph, which goes on until something ends it.
    const bool endsInTrailer = previous_.form == MarkdownForm::verbatim && !previous_.isCopied &&
                               previous_.row->text().string().starts_with('<') && out_.ends_with('}') &&
                               now_.form != MarkdownForm::item;
    const bool bothStand =
        isNext && caution_ < 2 && !endsInTrailer && previous_.form == before->form && now_.form == read->form;
    const bool isWhole = found > 0 || previous_.isCopied;
    const bool fits = bothStand || (found > 0 && found >= neededLineEnds());
    if (isNext && now_.keepsPrefix && isWhole && fits) {
      out_ += gap;
    } else {
      if (previous_.isCopied) closeFence();
      const std::size_t ends = bothStand && found > 0 ? found : std::max(lineEndsHere(), found);
      // A blank line in a quote that both stand in has its mark.
      const bool isInside = now_.depth > previous_.depth || !open_.empty();
      const std::string_view blank = isInside ? withoutEndBlanks(prefix) : std::string_view();
      std::size_t count = 0;
      // An empty line at the end of the text would end the quote.
      if (before && !read && source_.isLast(*before) && blank.empty() && fitsTail()) {
        const std::string_view tail = source_.behindLast();
        out_ += tail.substr(0, tail.find_last_of("\r\n") + 1);
        count = countLineEnds(tail);
        // The two would be one line end.
        if (count > 0 && out_.ends_with('\r') && source_.lineEnd() == "\n") out_.back() = '\n';
      }
      for (; count < ends; ++count) {
        if (count > 0) out_ += blank;
        out_ += source_.lineEnd();
      }
      out_ += prefix;
    }
  }
  ownBegin_ = out_.size();
  now_.beginsLine = !previous_.row || countLineEnds(std::string_view(out_).substr(end)) > 0;
}

/// Marks of quotes behind the last row of the source go with that row.
bool MarkdownWriter::fitsTail() const {
  const bool isInPlace = previous_.form == previous_.read->form && previous_.keepsPrefix;
  return isInPlace || source_.behindLast().find('>') == std::string_view::npos;
}

/// The end of the text is as it was: with a line end or without.
void MarkdownWriter::finish() {
  const std::string_view tail = source_.behindLast();
  if (!previous_.row) {
    if (source_.rowCount() == 0) out_ += source_.text().substr(source_.head().bodyBegin);
    return;
  }
  if (previous_.read && source_.isLast(*previous_.read) && fitsTail()) {
    out_ += tail;
  } else if (source_.text().empty() || countLineEnds(tail) > 0) {
    out_ += source_.lineEnd();
  }
}

}  // namespace vell::formats
