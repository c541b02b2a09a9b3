#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "outline_path/words.h"

// How the words of the language are recognised. Functions that are named after a length return how much of
// the beginning of `text` the token takes, 0 where there is none.

namespace vell::outline_path {

/// A word that may be a value without quotes.
bool isUnquotedWord(std::string_view word);
/// A bare word that a step may consist of, a test for the text.
bool isTextWord(std::string_view word);
/// Nothing but a bare word, perhaps in brackets.
bool isLoneWord(std::string_view text);
/// A number that a double can hold.
bool isFiniteNumber(std::string_view word);
bool isBoolean(std::string_view word);
bool isNull(std::string_view word);

/// A function's name with the opening bracket right behind it, which is not counted.
std::size_t functionNameLength(std::string_view text);
std::size_t relationLength(std::string_view text);
std::size_t relationModifierLength(std::string_view text);
std::size_t nodeTypeLength(std::string_view text);
/// An axis that is spelled ".", ".." or "name::".
std::size_t namedAxisLength(std::string_view text);
/// A signed 64-bit integer, which `integerOf` gives.
std::size_t integerLength(std::string_view text);

std::int64_t integerOf(std::string_view text);

/// Whether `text` begins with what "/" may divide by: a number, attribute, variable, function call, group or
/// string.
bool isDivisor(std::string_view text);

}  // namespace vell::outline_path
