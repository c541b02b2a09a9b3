#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vell::json {

/// Appends a text as a JSON string, its quotes included, with the fewest escapes: quote, backslash and
/// control characters. Each byte that is not UTF-8 becomes U+FFFD.
void appendString(std::string_view text, std::string& out);
std::string quoted(std::string_view text);

/// Checks the escapes of the string whose bytes stand in text[begin, end). Throws ParseError.
void checkEscapes(std::string_view text, std::size_t begin, std::size_t end);

/// What becomes of half a surrogate pair, which UTF-8 cannot express.
enum class LoneSurrogate {
  replaced,  ///< U+FFFD
  kept,      ///< three bytes as if it were a character: distinct strings stay distinct
};

/// The text that a checked string's bytes mean.
std::string unescaped(std::string_view raw, LoneSurrogate treatment);

/// Appends a checked string's bytes with the fewest escapes; lone surrogates stay escaped.
void appendReescaped(std::string_view raw, std::string& out);

}  // namespace vell::json
