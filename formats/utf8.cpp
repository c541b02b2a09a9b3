#include "formats/utf8.h"

#include <cstring>

namespace vell::formats {
namespace {

/// Bytes of the well-formed character at `at`, 0 where there is none.
std::size_t characterLength(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t index) -> unsigned {
    return index < text.size() ? static_cast<unsigned char>(text[index]) : 0u;
  };
  const auto continues = [&](std::size_t index) { return (byte(index) & 0xC0u) == 0x80u; };
  const unsigned lead = byte(at);
  const unsigned second = byte(at + 1);
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return continues(at + 1) ? 2 : 0;
  if (lead >= 0xE0 && lead <= 0xEF) {
    const bool overlong = lead == 0xE0 && second < 0xA0;
    const bool surrogate = lead == 0xED && second > 0x9F;
    return continues(at + 1) && continues(at + 2) && !overlong && !surrogate ? 3 : 0;
  }
  if (lead >= 0xF0 && lead <= 0xF4) {
    const bool outside = (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
    return continues(at + 1) && continues(at + 2) && continues(at + 3) && !outside ? 4 : 0;
  }
  return 0;
}

bool eightAreAscii(const char* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return (word & 0x8080808080808080u) == 0;
}

}  // namespace

std::size_t firstInvalidUtf8(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    if (text.size() - at >= 8 && eightAreAscii(text.data() + at)) {
      at += 8;
      continue;
    }
    const std::size_t length = characterLength(text, at);
    if (length == 0) return at;
    at += length;
  }
  return std::string_view::npos;
}

void appendUtf8(std::string& out, std::uint32_t character) {
  const auto put = [&out](std::uint32_t byte) { out += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (character < 0x80) return put(character);
  if (character < 0x800) {
    put(0xC0 | character >> 6);
  } else {
    if (character < 0x10000) {
      put(0xE0 | character >> 12);
    } else {
      put(0xF0 | character >> 18);
      put(0x80 | (character >> 12 & 0x3F));
    }
    put(0x80 | (character >> 6 & 0x3F));
  }
  put(0x80 | (character & 0x3F));
}

}  // namespace vell::formats
