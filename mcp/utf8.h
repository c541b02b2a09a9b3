#pragma once

#include <cstddef>
#include <string_view>

namespace vell::mcp {

/// Length in bytes of the UTF-8 character that the text starts with; 0 where it starts with none.
inline std::size_t utf8Length(std::string_view text) {
  const auto byte = [text](std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
  };
  const unsigned first = byte(0);
  if (first < 0x80) return text.empty() ? 0 : 1;
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4) return 0;
  for (std::size_t at = 1; at < length; ++at) {
    if ((byte(at) & 0xC0) != 0x80) return 0;
  }
  // Overlong forms, surrogates and what lies beyond U+10FFFF show in the second byte.
  const unsigned second = byte(1);
  const bool tooLow = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
  const bool tooHigh = (first == 0xED && second > 0x9F) || (first == 0xF4 && second > 0x8F);
  return tooLow || tooHigh ? 0 : length;
}

}  // namespace vell::mcp
