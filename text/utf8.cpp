#include "text/utf8.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>

namespace vell::text {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";  // U+FFFD

/// The character that the text begins with; length 0 where it begins with none.
CodePoint decodedFirst(std::string_view text) {
  if (text.empty()) return {0, 0};
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  if (bytes[0] < 0x80) return {bytes[0], 1};
  utf8proc_int32_t value = 0;
  const auto length = utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(text.size()), &value);
  if (length < 0) return {0, 0};
  return {static_cast<char32_t>(value), static_cast<std::size_t>(length)};
}

}  // namespace

std::size_t utf8Length(std::string_view text) { return decodedFirst(text).length; }

std::optional<std::size_t> findInvalidUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = utf8Length(text.substr(at));
    if (length == 0) return at;
    at += length;
  }
  return std::nullopt;
}

std::string replaceInvalidUtf8(std::string_view text) {
  std::string valid;
  while (!text.empty()) {
    const std::size_t length = utf8Length(text);
    valid += length == 0 ? replacement : text.substr(0, length);
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return valid;
}

CodePoint firstCodePoint(std::string_view text) {
  const CodePoint first = decodedFirst(text);
  return first.length > 0 ? first : CodePoint{0xFFFD, text.empty() ? 0U : 1U};
}

void appendUtf8(std::string& out, char32_t value) {
  std::array<utf8proc_uint8_t, 4> bytes{};
  const auto length = utf8proc_encode_char(static_cast<utf8proc_int32_t>(value), bytes.data());
  out.append(bytes.begin(), bytes.begin() + length);
}

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace vell::text
