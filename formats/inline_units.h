#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "formats/inline_markdown.h"

namespace vell::formats {

// What stands in inline source as one: what follows a "]" and what "<" begins.

/// What a "]" gives to the text before it.
struct BracketTail {
  Attributes style;
  std::size_t end = 0;
  bool isLink = false;
};
/// Reads `(target "title")`, `{key=value}` or both at `at`.
std::optional<BracketTail> readBracketTail(std::string_view source, std::size_t at);

/// An address in angle brackets at the front, `<https://x>` or `<a@b.c>`: its target; none where there is
/// none.
std::optional<std::string> autolinkTarget(std::string_view source);

/// Bytes of the html at the front of `source` (a tag or a comment); 0 where there is none. With a backslash
/// in it it is none: there marks are escaped as in any text.
std::size_t htmlLength(std::string_view source);

}  // namespace vell::formats
