#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "formats/markdown_format.h"

namespace vell::formats {

/// A markdown text that an outline was read from, as its rows stand in it; empty for what is written anew.
class MarkdownSource {
 public:
  /// Nothing was read: rows are written with tabs and line feeds.
  MarkdownSource() = default;
  explicit MarkdownSource(const Outline& outline);

  std::string_view text() const { return text_; }
  std::size_t bodyBegin() const { return read_.bodyBegin; }
  const MarkdownText& read() const { return read_; }

  const MarkdownRow* find(const Row& row) const;
  std::size_t indexOf(const MarkdownRow& row) const {
    return static_cast<std::size_t>(&row - read_.rows.data());
  }
  bool isAsRead(const Row& row) const;
  bool isLast(const MarkdownRow& row) const { return &row == &read_.rows.back(); }

  /// The row's own bytes.
  std::string_view own(const MarkdownRow& row) const {
    return text_.substr(row.span.begin, row.span.end - row.span.begin);
  }
  std::string_view between(const MarkdownRow& row, const MarkdownRow& next) const {
    return text_.substr(row.span.end, next.span.begin - row.span.end);
  }
  std::string_view behindLast() const {
    return read_.rows.empty() ? text_.substr(read_.bodyBegin) : text_.substr(read_.rows.back().span.end);
  }
  /// The fence that the row begins with where nothing ends it; else empty.
  std::string_view openFence(const MarkdownRow& row) const;
  /// What stands in front of the row's lines: white space and ">", list marks replaced by blanks.
  std::string prefix(const MarkdownRow& row) const;
  /// The same of the rows in the row's item or quote; none where there are none.
  std::optional<std::string> childPrefix(const MarkdownRow& row) const;
  std::size_t lineEndsBefore(const MarkdownRow& row) const;
  std::size_t lineEndsBehind(const MarkdownRow& row) const;
  /// Line ends between the row and an item of its list beside it, or a list in it; 1 where there is none.
  std::size_t listGap(const MarkdownRow& row) const;

  std::string_view lineEnd() const { return lineEnd_; }
  char bullet() const { return bullet_; }
  bool indentsByTabs() const { return indentsByTabs_; }

 private:
  /// Both are items of one list, or one begins a list within the other.
  bool isInListWith(const MarkdownRow& row, const MarkdownRow& beside) const;

  const Outline* outline_ = nullptr;
  std::string_view text_;
  MarkdownText read_;
  std::string_view lineEnd_ = "\n";
  char bullet_ = '-';
  bool indentsByTabs_ = true;
};

/// What the items of a list have in common: their bullet, or the character behind their number.
char listMark(std::string_view item);
/// Line ends of any kind.
std::size_t countLineEnds(std::string_view text);

}  // namespace vell::formats
