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

/// A checked JSON text and where its tokens begin.
///
/// A key or scalar takes one token; an object or array takes two, where it begins and the number of the token
/// behind its end, and its content follows. Commas, colons and closing brackets are left out.
class Index {
 public:
  /// Throws ParseError where the text is not JSON, is nested deeper than maxDepth or as large as maxSize.
  explicit Index(Text text);

  std::string_view text() const { return text_.view(); }
  std::uint32_t firstToken() const { return firstToken_; }

  /// The first byte of a token.
  char first(std::uint32_t token) const { return text_.data()[begin(token)]; }
  bool isContainer(std::uint32_t token) const { return first(token) == '{' || first(token) == '['; }
  /// The token behind a container's end.
  std::uint32_t end(std::uint32_t container) const { return tokens_[container + 1]; }
  /// The token behind a value.
  std::uint32_t next(std::uint32_t value) const { return isContainer(value) ? end(value) : value + 1; }

  /// A string's bytes between its quotes, escapes as they were written.
  std::string_view rawString(std::uint32_t token) const;
  bool hasEscapes(std::uint32_t token) const { return (tokens_[token] & escapeMark) != 0; }
  /// A number's or literal's own text.
  std::string_view scalar(std::uint32_t token) const;

  /// Set on the token of a string that holds a backslash; the other bits are the offset.
  static constexpr std::uint32_t escapeMark = std::uint32_t{1} << 31;

 private:
  std::size_t begin(std::uint32_t token) const { return tokens_[token] & ~escapeMark; }

  Text text_;
  std::unique_ptr<std::uint32_t[]> tokens_;
  std::uint32_t firstToken_ = 0;
  std::uint32_t endToken_ = 0;
};

}  // namespace vell::json
