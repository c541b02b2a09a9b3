#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vell::json {

/// Appends a text as a JSON string, its quotes included. Each byte that is not UTF-8 becomes U+FFFD.
void appendString(std::string_view text, std::string& out);
std::string quoted(std::string_view text);

/// Checks the escapes of the string whose bytes stand in text[begin, end). Throws ParseError.
void checkEscapes(std::string_view text, std::size_t begin, std::size_t end);

/// What becomes of half a surrogate pair, which UTF-8 cannot express.
enum class LoneSurrogate {
  replaced,  ///< U+FFFD
  kept,      ///< three bytes as if it were a character: distinct strings stay distinct
};

/// Appends the meaning of a checked string's bytes to `out`.
void appendDecoded(std::string_view raw, LoneSurrogate treatment, std::string& out);

/// Appends a checked string's bytes with the fewest escapes: only quote, backslash and control characters, in
/// their short forms where they have one, and lone surrogates.
void appendNormalized(std::string_view raw, std::string& out);

}  // namespace vell::json
