#include "outline_path/characters.h"

#include <algorithm>
#include <array>

#include "text/utf8.h"

namespace vell::outline_path {
namespace {

struct Range {
  char32_t first, last;
};

// The name start characters of XML 1.0.
constexpr std::array nameStart{
    Range{'a', 'z'},       Range{'A', 'Z'},       Range{':', ':'},       Range{'_', '_'},
    Range{0xC0, 0xD6},     Range{0xD8, 0xF6},     Range{0xF8, 0x2FF},    Range{0x370, 0x37D},
    Range{0x37F, 0x1FFF},  Range{0x200C, 0x200D}, Range{0x2070, 0x218F}, Range{0x2C00, 0x2FEF},
    Range{0x3001, 0xD7FF}, Range{0xF900, 0xFDCF}, Range{0xFDF0, 0xFFFD}, Range{0x10000, 0xEFFFF},
};
// Those that may follow in a name besides; U+00B7 is not among them, unlike in XML.
constexpr std::array nameRest{Range{'-', '.'}, Range{'0', '9'}, Range{0x300, 0x36F}, Range{0x203F, 0x2040}};

template <std::size_t count>
bool within(const std::array<Range, count>& ranges, char32_t value) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [&](const Range& range) { return value >= range.first && value <= range.last; });
}

bool startsName(char32_t value) { return within(nameStart, value); }
bool isInName(char32_t value) { return within(nameStart, value) || within(nameRest, value); }

}  // namespace

std::size_t wordLength(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    const text::CodePoint point = text::firstCodePoint(text.substr(at));
    if (!isInName(point.value)) break;
    at += point.length;
  }
  return std::min(at, text.size());
}

std::size_t nameLength(std::string_view text) {
  return text.empty() || !startsName(text::firstCodePoint(text).value) ? 0 : wordLength(text);
}

bool isNumber(std::string_view word) {
  const auto digitsEnd = std::find_if_not(word.begin(), word.end(), isDigit);
  if (digitsEnd == word.begin()) return false;
  if (digitsEnd == word.end()) return true;
  return *digitsEnd == '.' && digitsEnd + 1 != word.end() && std::all_of(digitsEnd + 1, word.end(), isDigit);
}

std::size_t skipBlanks(std::string_view text, std::size_t at) {
  while (at < text.size() && isBlank(text[at])) ++at;
  return at;
}

}  // namespace vell::outline_path
