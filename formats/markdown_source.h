#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/markdown_format.h"

namespace vell::formats {

/// What the reader of a file notes for its writer.
struct MarkdownNotes : document::SourceNotes {
  MarkdownHead head;
  std::vector<MarkdownPlace> rows;
  std::string_view lineEnd = "\n";
  char bullet = '\0';                       ///< of the first item that has one
  bool hasTabs = false, hasBlanks = false;  ///< in front of rows that stand in others
  /// A paragraph begins a formula that nothing ends: what stands behind it could.
  bool hasOpenFormula = false;

  /// Notes the next row of the text.
  void add(std::string_view text, const MarkdownRow& row);
};

/// A markdown text that an outline was read from, as its rows stand in it; empty for what is written anew.
class MarkdownSource {
 public:
  /// Nothing was read: rows are written with tabs and line feeds.
  MarkdownSource();
  explicit MarkdownSource(const Outline& outline);

  std::string_view text() const { return text_; }
  const MarkdownHead& head() const { return notes_->head; }
  /// The rows of the text stand behind one another.
  const MarkdownPlace* first() const { return notes_->rows.data(); }
  std::size_t rowCount() const { return notes_->rows.size(); }
  std::string_view lineEnd() const { return notes_->lineEnd; }
  char bullet() const { return notes_->bullet != '\0' ? notes_->bullet : '-'; }
  bool indentsByTabs() const { return notes_->hasTabs || !notes_->hasBlanks; }
  bool hasOpenFormula() const { return notes_->hasOpenFormula; }

  /// Where the row stands; null where it was not read.
  const MarkdownPlace* find(const Row& row) const;
  /// The place among the rows of the text.
  std::uint32_t indexOf(const MarkdownPlace& row) const {
    return static_cast<std::uint32_t>(&row - notes_->rows.data());
  }
  bool isAsRead(const Row& row) const { return formats::isAsRead(*outline_, row, Times::dropped); }
  bool isLast(const MarkdownPlace& row) const { return &row == &notes_->rows.back(); }
  /// What the row said when it was read; null where it has said nothing else since.
  const RowContent* original(const Row& row) const { return outline_->source()->original(row.id()); }
  /// What the row was read as.
  MarkdownRow readAgain(const Row& row, const MarkdownPlace& place) const;

  const SourceSpan& span(const MarkdownPlace& row) const { return outline_->source()->spans()[indexOf(row)]; }
  /// The row's own bytes.
  std::string_view own(const MarkdownPlace& row) const {
    return text_.substr(span(row).begin, span(row).end - span(row).begin);
  }
  std::string_view between(const MarkdownPlace& row, const MarkdownPlace& next) const {
    return text_.substr(span(row).end, span(next).begin - span(row).end);
  }
  std::string_view behindLast() const;
  /// The fence that the row begins with where nothing ends it; else empty.
  std::string_view openFence(const MarkdownPlace& row) const;
  /// What stands in front of the row's lines: white space and ">", list marks replaced by blanks.
  std::string prefix(const MarkdownPlace& row) const;
  /// The same for new rows in the row's item or quote; none where there are no others.
  std::optional<std::string> childPrefix(const MarkdownPlace& row) const;
  /// A reader can begin with its line: nothing but what its containers put there stands in front of it.
  bool beginsLine(const MarkdownPlace& row) const;

  /// The rows in whose items and quotes the row stands, the outermost first.
  std::vector<const MarkdownPlace*> containersOf(const MarkdownPlace& row) const;
  /// Where the row behind that one stands, as far as that is in no item or quote of that row itself.
  MarkdownNesting nestingBehind(const MarkdownPlace& row) const;

  std::size_t lineEndsBefore(const MarkdownPlace& row) const;
  std::size_t lineEndsBehind(const MarkdownPlace& row) const;
  /// Line ends between the row and an item of its list beside it, or a list in it; 1 where there is none or
  /// both stand on one line.
  std::size_t listGap(const MarkdownPlace& row) const;
  /// Both are items, with nothing between them but other items of the same list.
  bool areInOneList(const MarkdownPlace& row, const MarkdownPlace& later) const;

 private:
  /// Both are items of one list, or one begins a list within the other.
  bool isInListWith(const MarkdownPlace& row, const MarkdownPlace& beside) const;
  std::size_t lineBegin(const MarkdownPlace& row) const;

  const Outline* outline_ = nullptr;
  std::string_view text_;
  const MarkdownNotes* notes_;
};

/// The first line end of a text; a line feed where there is none.
std::string_view lineEndOf(std::string_view text);
/// What the items of a list have in common: their bullet, or the character behind their number.
char listMark(std::string_view item);
/// True of an item or a quote without text: the next row in it could become that.
bool isBareMark(MarkdownForm form, std::string_view own);
/// Line ends of any kind.
std::size_t countLineEnds(std::string_view text);
/// Lines that stand behind one prefix, the first one without it, as they stand behind another.
std::string reindented(std::string_view lines, std::string_view oldPrefix, std::string_view newPrefix,
                       std::string_view lineEnd);
/// The prefix of an empty line.
std::string_view withoutEndBlanks(std::string_view prefix);

}  // namespace vell::formats
