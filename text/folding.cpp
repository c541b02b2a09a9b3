#include "text/folding.h"

#include <algorithm>

#include "text/utf8.h"

namespace vell::text {
namespace {

// The letters U+00C0 to U+017F without accents; "." for those that are no accented letter.
constexpr std::string_view kWithoutAccents =
    "AAAAAA.CEEEEIIII.NOOOOO.OUUUUY..aaaaaa.ceeeeiiii.nooooo.ouuuuy.y"
    "AaAaAaCcCcCcCcDdDdEeEeEeEeEeGgGgGgGgHh..IiIiIiIiI...JjKk.LlLlLl."
    ".LlNnNnNn...OoOoOo..RrRrRrSsSsSsSsTtTt..UuUuUuUuUuUuWwYyYZzZzZz.";

constexpr char toLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

/// From U+0100 to U+017F upper and lower case alternate, with the even or the odd one in upper case.
char32_t lowerLatinExtended(char32_t c) {
  const bool oddIsUpper = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
  const bool hasNoPair = c == 0x130 || c == 0x131 || c == 0x138 || c == 0x149 || c == 0x17F;
  if (c == 0x178) return 0xFF;
  if (hasNoPair) return c;
  return (c % 2 == 1) == oddIsUpper ? c + 1 : c;
}

char32_t lower(char32_t c) {
  if (c < 0x80) return static_cast<char32_t>(toLower(static_cast<char>(c)));
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 32;
  if (c >= 0x100 && c <= 0x17F) return lowerLatinExtended(c);
  if (c >= 0x391 && c <= 0x3A9 && c != 0x3A2) return c + 32;
  if (c == 0x3C2) return 0x3C3;
  if (c >= 0x410 && c <= 0x42F) return c + 32;
  if (c >= 0x400 && c <= 0x40F) return c + 80;
  return c;
}

bool isCombiningAccent(char32_t c) { return c >= 0x300 && c <= 0x36F; }

template <typename Change>
std::string changed(std::string_view text, Change change) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const CodePoint point = firstCodePoint(text);
    if (const char32_t c = change(point.value); c != 0) appendUtf8(out, c);
    text.remove_prefix(point.length);
  }
  return out;
}

}  // namespace

std::string foldCase(std::string_view text) {
  if (!isAscii(text)) return changed(text, lower);
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), toLower);
  return out;
}

std::string foldAccents(std::string_view text) {
  if (isAscii(text)) return std::string(text);
  return changed(text, [](char32_t c) -> char32_t {
    if (isCombiningAccent(c)) return 0;
    const char32_t offset = c - 0xC0;
    if (c < 0xC0 || offset >= kWithoutAccents.size() || kWithoutAccents[offset] == '.') return c;
    return static_cast<char32_t>(kWithoutAccents[offset]);
  });
}

TextSearch::TextSearch(std::string_view wanted) : folded_(foldCase(wanted)), isAscii_(isAscii(folded_)) {}

bool TextSearch::isIn(std::string_view text) const {
  // A letter beyond ASCII never folds to one within it.
  if (isAscii_) return isInAscii(text);
  return foldCase(text).find(folded_) != std::string::npos;
}

bool TextSearch::isInAscii(std::string_view text) const {
  const std::size_t length = folded_.size();
  if (length == 0) return true;
  const char first = folded_.front();
  for (std::size_t at = 0; at + length <= text.size(); ++at) {
    if (toLower(text[at]) != first) continue;
    std::size_t same = 1;
    while (same < length && toLower(text[at + same]) == folded_[same]) ++same;
    if (same == length) return true;
  }
  return false;
}

}  // namespace vell::text
