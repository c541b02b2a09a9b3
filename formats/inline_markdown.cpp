#include "formats/inline_markdown.h"

#include <array>
#include <cstdint>

#include "text/utf8.h"

namespace vell::formats {
namespace {

struct Mark {
  std::string_view mark;
  std::string_view key;
};

/// The first mark of a key is the one that is written.
constexpr std::array<Mark, 6> marks = {
    {{"**", "strong"}, {"__", "strong"}, {"_", "em"}, {"*", "em"}, {"~~", "s"}, {"==", "mark"}}};

}  // namespace

bool isWordByte(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x80 || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isControl(char c) { return static_cast<unsigned char>(c) < 0x20; }

bool isPunctuation(char c) { return c > ' ' && c < 0x7F && !isWordByte(c); }

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n'; }

std::string_view trimEnd(std::string_view text) {
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view trim(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  return trimEnd(text);
}

std::size_t runLength(std::string_view source, std::size_t at) {
  std::size_t end = at;
  while (end < source.size() && source[end] == source[at]) ++end;
  return end - at;
}

Attributes styleOf(std::string_view wanted) {
  for (const Mark& entry : marks) {
    if (entry.mark == wanted) return {{std::string(entry.key), ""}};
  }
  return {};
}

std::string_view markOf(std::string_view key) {
  for (const Mark& entry : marks) {
    if (entry.key == key) return entry.mark;
  }
  return {};
}

std::size_t decodeReference(std::string_view source, std::string& out) {
  if (!source.starts_with("&#")) return 0;
  std::size_t at = 2;
  const bool isHex = at < source.size() && (source[at] == 'x' || source[at] == 'X');
  if (isHex) ++at;
  const std::size_t digitsFrom = at;
  std::uint32_t value = 0;
  for (; at < source.size() && at - digitsFrom < 7; ++at) {
    const std::size_t digit = std::string_view("0123456789abcdef").find(static_cast<char>(source[at] | 0x20));
    if (source[at] < '0' || digit == std::string_view::npos || (!isHex && digit > 9)) break;
    value = value * (isHex ? 16 : 10) + static_cast<std::uint32_t>(digit);
  }
  const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
  if (at == digitsFrom || at >= source.size() || source[at] != ';' || value > 0x10FFFF || isSurrogate)
    return 0;
  text::appendUtf8(out, value);
  return at + 1;
}

void appendReference(std::string& out, char c) {
  out += "&#";
  out += std::to_string(static_cast<unsigned char>(c));
  out += ';';
}

}  // namespace vell::formats
