#include "text/folding.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>

#include "text/utf8.h"

namespace vell::text {
namespace {

constexpr char32_t firstAccent = 0x300, lastAccent = 0x36F;
/// Stands for a character that is left out.
constexpr char32_t none = 0xFFFFFFFF;

constexpr char toLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

char32_t lower(char32_t c) {
  constexpr char32_t capitalIWithDot = 0x130;
  if (c < 0x80) return static_cast<char32_t>(toLower(static_cast<char>(c)));
  const auto letter = static_cast<utf8proc_int32_t>(c);
  std::array<utf8proc_int32_t, 4> folded{};
  int unused = 0;
  const auto count =
      utf8proc_decompose_char(letter, folded.data(), folded.size(), UTF8PROC_CASEFOLD, &unused);
  if (count == 1) return static_cast<char32_t>(folded[0]);
  // What full folding turns into several letters becomes its lower case; that of this one is Turkish.
  return c == capitalIWithDot ? c : static_cast<char32_t>(utf8proc_tolower(letter));
}

/// Strokes are part of their letter and are not taken off as accents are.
char32_t withoutAccent(char32_t c) {
  constexpr std::u32string_view stroked = U"ØøĐđŁł", plain = U"OoDdLl";
  const std::size_t at = stroked.find(c);
  if (at != std::u32string_view::npos) return plain[at];
  return c >= firstAccent && c <= lastAccent ? none : c;
}

template <typename Change>
std::string changed(std::string_view text, Change change) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const CodePoint point = firstCodePoint(text);
    if (const char32_t c = change(point.value); c != none) appendUtf8(out, c);
    text.remove_prefix(point.length);
  }
  return out;
}

/// In composed or decomposed form. What is not UTF-8 stays as it is.
std::string normalised(std::string_view text, utf8proc_option_t form) {
  utf8proc_uint8_t* out = nullptr;
  const auto size = utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                 static_cast<utf8proc_ssize_t>(text.size()), &out,
                                 static_cast<utf8proc_option_t>(UTF8PROC_STABLE | form));
  const std::unique_ptr<utf8proc_uint8_t, void (*)(void*)> held(out, std::free);
  if (size < 0) return std::string(text);
  return {reinterpret_cast<const char*>(out), static_cast<std::size_t>(size)};
}

std::string composed(std::string text) {
  // All characters before the first accent are in composed form.
  constexpr unsigned char firstByte = 0xCC;
  const auto isBefore = [](char c) { return static_cast<unsigned char>(c) < firstByte; };
  return std::all_of(text.begin(), text.end(), isBefore) ? text : normalised(text, UTF8PROC_COMPOSE);
}

}  // namespace

std::string foldCase(std::string_view text) {
  // Some letters have a composed form in lower case only.
  if (!isAscii(text)) return composed(changed(composed(std::string(text)), lower));
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), toLower);
  return out;
}

std::string foldAccents(std::string_view text) {
  if (isAscii(text)) return std::string(text);
  return composed(changed(normalised(text, UTF8PROC_DECOMPOSE), withoutAccent));
}

TextSearch::TextSearch(std::string_view wanted) : folded_(foldCase(wanted)), isAscii_(isAscii(folded_)) {}

bool TextSearch::isIn(std::string_view text) const {
  if (isAscii_ && isAscii(text)) return isInAscii(text);
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
