#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vell::text {

/// U+FEFF, which some programs put before a text to mark it as UTF-8.
inline constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// Bytes of the UTF-8 character that the text begins with; 0 where it begins with none.
std::size_t utf8Length(std::string_view text);

/// Whether a byte of UTF-8 goes on with a character instead of beginning one.
constexpr bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

/// Offset of the first byte that is part of no UTF-8 character.
std::optional<std::size_t> findInvalidUtf8(std::string_view text);

/// The text with U+FFFD in place of each byte that is part of no UTF-8 character.
std::string replaceInvalidUtf8(std::string_view text);

struct CodePoint {
  char32_t value;
  std::size_t length;  ///< bytes
};
/// The character that the text begins with. U+FFFD and one byte where it is not UTF-8, length 0 at the end.
CodePoint firstCodePoint(std::string_view text);

/// Appends a code point as UTF-8.
void appendUtf8(std::string& out, char32_t value);

bool isAscii(std::string_view text);

}  // namespace vell::text
