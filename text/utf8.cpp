#include "text/utf8.h"

#include <algorithm>

namespace vell::text {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

unsigned byteAt(std::string_view text, std::size_t at) {
  return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
}

bool continuesAt(std::string_view text, std::size_t at) {
  return at < text.size() && isContinuation(text[at]);
}

}  // namespace

std::size_t utf8Length(std::string_view text) {
  const unsigned first = byteAt(text, 0);
  const unsigned second = byteAt(text, 1);
  if (first < 0x80) return text.empty() ? 0 : 1;
  if (first < 0xC2 || first > 0xF4 || !continuesAt(text, 1)) return 0;
  if (first < 0xE0) return 2;
  // Overlong forms, surrogates and what lies beyond U+10FFFF show in the second byte.
  const bool tooLow = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
  const bool tooHigh = (first == 0xED && second > 0x9F) || (first == 0xF4 && second > 0x8F);
  if (tooLow || tooHigh || !continuesAt(text, 2)) return 0;
  if (first < 0xF0) return 3;
  return continuesAt(text, 3) ? 4 : 0;
}

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
    valid += length == 0 ? kReplacement : text.substr(0, length);
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return valid;
}

CodePoint firstCodePoint(std::string_view text) {
  const std::size_t length = utf8Length(text);
  const unsigned first = byteAt(text, 0);
  if (length == 0) return {0xFFFD, text.empty() ? 0U : 1U};
  if (length == 1) return {first, 1};
  char32_t value = first & (0xFFU >> (length + 1));
  for (std::size_t at = 1; at < length; ++at) value = value << 6 | (byteAt(text, at) & 0x3F);
  return {value, length};
}

void appendUtf8(std::string& out, char32_t value) {
  const auto put = [&out](char32_t byte) { out += static_cast<char>(static_cast<unsigned char>(byte)); };
  const auto putTail = [&](int shift) { put(0x80 | (value >> shift & 0x3F)); };
  if (value < 0x80) return put(value);
  if (value < 0x800) {
    put(0xC0 | value >> 6);
  } else {
    if (value < 0x10000) {
      put(0xE0 | value >> 12);
    } else {
      put(0xF0 | value >> 18);
      putTail(12);
    }
    putTail(6);
  }
  putTail(0);
}

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace vell::text
