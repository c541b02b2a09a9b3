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

/// A checked JSON text and where its tokens begin and end.
///
/// Every key and value is a token of two entries: the offset at which it begins, and the offset of its
/// closing quote (a string), the offset behind it (a number or literal) or the number of the token behind it
/// (an object or array, whose content follows it).
class Index {
 public:
  /// Throws ParseError where the text is not JSON, is nested deeper than maxDepth or as large as maxSize.
  explicit Index(Text text);

  std::string_view text() const { return text_.view(); }

  /// The offset of a token's first byte.
  std::size_t begin(std::uint32_t token) const { return entries_[2 * std::size_t{token}] & ~mark; }
  char first(std::uint32_t token) const { return text_.data()[begin(token)]; }
  bool isContainer(std::uint32_t token) const { return (entries_[2 * std::size_t{token} + 1] & mark) != 0; }
  /// The token behind a container's end.
  std::uint32_t end(std::uint32_t container) const { return static_cast<std::uint32_t>(endEntry(container)); }
  /// The token behind a value.
  std::uint32_t next(std::uint32_t value) const { return isContainer(value) ? end(value) : value + 1; }

  /// A string's bytes between its quotes, escapes as they were written.
  std::string_view rawString(std::uint32_t token) const { return slice(begin(token) + 1, endEntry(token)); }
  /// The same with its quotes.
  std::string_view quotedString(std::uint32_t token) const {
    return slice(begin(token), endEntry(token) + 1);
  }
  bool hasEscapes(std::uint32_t token) const { return (entries_[2 * std::size_t{token}] & mark) != 0; }
  /// A number's or literal's own text.
  std::string_view scalar(std::uint32_t token) const { return slice(begin(token), endEntry(token)); }

  /// Set on the first entry of a string that holds a backslash, and on the second one of a container.
  static constexpr std::uint32_t mark = std::uint32_t{1} << 31;

 private:
  std::size_t endEntry(std::uint32_t token) const { return entries_[2 * std::size_t{token} + 1] & ~mark; }
  std::string_view slice(std::size_t begin, std::size_t end) const {
    return {text_.data() + begin, end - begin};
  }

  Text text_;
  std::unique_ptr<std::uint32_t[]> entries_;
};

}  // namespace vell::json
