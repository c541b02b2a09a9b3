#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "json/text.h"

namespace vell::json {

/// Levels of nesting beyond which a text is refused.
inline constexpr std::size_t maxDepth = 20'000;
/// Texts of this many bytes and more are refused.
inline constexpr std::size_t maxSize = std::size_t{1} << 31;

/// A checked JSON text and where its keys and values begin and end.
///
/// Each key and each value has an entry of two numbers, in the order of the text: the offset at which it
/// begins, and its end: the offset of the closing quote (string), the offset behind it (number, literal), or
/// the number of the entry behind it (object and array, whose content follows them).
class Index {
 public:
  /// Throws ParseError where the text is not JSON, is nested deeper than maxDepth or as large as maxSize.
  explicit Index(Text text);

  std::string_view text() const { return text_.view(); }

  std::size_t begin(std::uint32_t entry) const { return numbers_[2 * std::size_t{entry}] & ~mark; }
  char firstByte(std::uint32_t entry) const { return text_.data()[begin(entry)]; }
  bool isContainer(std::uint32_t entry) const { return (numbers_[2 * std::size_t{entry} + 1] & mark) != 0; }
  /// The entry behind a container's content.
  std::uint32_t containerEnd(std::uint32_t container) const {
    return static_cast<std::uint32_t>(end(container));
  }
  /// The entry behind a value and its content.
  std::uint32_t next(std::uint32_t value) const {
    return isContainer(value) ? containerEnd(value) : value + 1;
  }

  /// A string's bytes between its quotes, escapes as they were written.
  std::string_view rawString(std::uint32_t entry) const { return slice(begin(entry) + 1, end(entry)); }
  /// The same with its quotes.
  std::string_view quotedString(std::uint32_t entry) const { return slice(begin(entry), end(entry) + 1); }
  bool hasEscapes(std::uint32_t entry) const { return (numbers_[2 * std::size_t{entry}] & mark) != 0; }
  /// A number's or literal's own text.
  std::string_view scalar(std::uint32_t entry) const { return slice(begin(entry), end(entry)); }

 private:
  friend class Parser;

  /// Set on the beginning of a string that holds a backslash, and on the end of a container.
  static constexpr std::uint32_t mark = std::uint32_t{1} << 31;

  std::size_t end(std::uint32_t entry) const { return numbers_[2 * std::size_t{entry} + 1] & ~mark; }
  std::string_view slice(std::size_t begin, std::size_t end) const {
    return {text_.data() + begin, end - begin};
  }

  Text text_;
  std::unique_ptr<std::uint32_t[]> numbers_;
};

}  // namespace vell::json
