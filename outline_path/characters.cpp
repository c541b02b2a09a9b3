#include "outline_path/characters.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace vell::outline_path {
namespace {

struct Range {
  char32_t first, last;
};

// The name start characters of XML 1.0 beyond ASCII.
constexpr std::array kNameStart{
    Range{0xC0, 0xD6},     Range{0xD8, 0xF6},     Range{0xF8, 0x2FF},    Range{0x370, 0x37D},
    Range{0x37F, 0x1FFF},  Range{0x200C, 0x200D}, Range{0x2070, 0x218F}, Range{0x2C00, 0x2FEF},
    Range{0x3001, 0xD7FF}, Range{0xF900, 0xFDCF}, Range{0xFDF0, 0xFFFD}, Range{0x10000, 0xEFFFF},
};
// Those that may follow in a name besides; U+00B7 is not among them, unlike in XML.
constexpr std::array kNameRest{Range{0x300, 0x36F}, Range{0x203F, 0x2040}};

template <std::size_t count>
bool within(const std::array<Range, count>& ranges, char32_t value) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [&](const Range& range) { return value >= range.first && value <= range.last; });
}

bool isBeyondAsciiOf(std::uint8_t wanted, char32_t value) {
  return within(kNameStart, value) || (wanted == kInName && within(kNameRest, value));
}

/// The length of the sequence that `lead` begins, 0 where no sequence may begin with it.
std::size_t sequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

bool isValidSequence(std::string_view sequence) {
  for (const char c : sequence.substr(1)) {
    if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) return false;
  }
  const char32_t value = firstCodePoint(sequence).value;
  if (sequence.size() == 3) return value >= 0x800 && (value < 0xD800 || value > 0xDFFF);
  if (sequence.size() == 4) return value >= 0x10000 && value <= 0x10FFFF;
  return true;
}

template <typename Block>
bool isAsciiBlock(const char* begin) {
  Block block;
  std::memcpy(&block, begin, sizeof block);
  return (block & static_cast<Block>(0x8080808080808080U)) == 0;
}

/// The whole text in blocks; the last one may overlap the one before.
bool isAscii(std::string_view text) {
  const char* end = text.data() + text.size();
  if (text.size() < 4)
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  if (text.size() < 8)
    return isAsciiBlock<std::uint32_t>(text.data()) && isAsciiBlock<std::uint32_t>(end - 4);
  for (const char* at = text.data(); end - at > 8; at += 8) {
    if (!isAsciiBlock<std::uint64_t>(at)) return false;
  }
  return isAsciiBlock<std::uint64_t>(end - 8);
}

}  // namespace

CodePoint firstCodePoint(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = std::max<std::size_t>(sequenceLength(lead), 1);
  if (length == 1) return {lead, 1};
  char32_t value = lead & (0xFFU >> (length + 1));
  for (const char c : text.substr(1, length - 1)) value = value << 6 | (static_cast<unsigned char>(c) & 0x3F);
  return {value, length};
}

std::size_t lengthBeyondAscii(std::uint8_t wanted, std::string_view text) {
  const CodePoint point = firstCodePoint(text);
  return isBeyondAsciiOf(wanted, point.value) ? point.length : 0;
}

bool isNumber(std::string_view word) {
  const auto digitsEnd = std::find_if_not(word.begin(), word.end(), isDigit);
  if (digitsEnd == word.begin()) return false;
  if (digitsEnd == word.end()) return true;
  return *digitsEnd == '.' && digitsEnd + 1 != word.end() && std::all_of(digitsEnd + 1, word.end(), isDigit);
}

std::optional<std::size_t> invalidUtf8(std::string_view text) {
  if (isAscii(text)) return std::nullopt;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = sequenceLength(static_cast<unsigned char>(text[at]));
    if (length == 0 || length > text.size() - at) return at;
    if (length > 1 && !isValidSequence(text.substr(at, length))) return at;
    at += length;
  }
  return std::nullopt;
}

}  // namespace vell::outline_path
