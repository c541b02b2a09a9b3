#pragma once

#include <cstddef>
#include <string_view>

// The character classes of the language, over UTF-8 text that is known to be valid.

namespace vell::outline_path {

/// The six ASCII blanks.
constexpr bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// The number of bytes of the run of word characters (those that may stand in an unquoted word).
std::size_t wordLength(std::string_view text);
/// The number of bytes of the name that `text` begins with: one that may start a name, then any that may
/// stand in one. 0 where there is none.
std::size_t nameLength(std::string_view text);
/// Whether `word` is decimal digits with an optional fraction.
bool isNumber(std::string_view word);
/// The offset of the first character at or behind `at` that is no blank.
std::size_t skipBlanks(std::string_view text, std::size_t at);

}  // namespace vell::outline_path
