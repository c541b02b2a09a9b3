#include "text/display_width.h"

#include <algorithm>
#include <array>

#include "text/utf8.h"

namespace vell::text {
namespace {

struct Range {
  char32_t first, last;
};

// Scripts and symbols that take two columns, and marks that take none.
constexpr std::array kWide{Range{0x1100, 0x115F},   Range{0x2E80, 0x303E},   Range{0x3041, 0xA4CF},
                           Range{0xA960, 0xA97C},   Range{0xAC00, 0xD7A3},   Range{0xF900, 0xFAFF},
                           Range{0xFE30, 0xFE6F},   Range{0xFF00, 0xFF60},   Range{0xFFE0, 0xFFE6},
                           Range{0x1F300, 0x1F64F}, Range{0x1F680, 0x1F6FF}, Range{0x1F900, 0x1F9FF},
                           Range{0x20000, 0x3FFFD}};
constexpr std::array kWidthless{Range{0x300, 0x36F},   Range{0x483, 0x489},   Range{0x591, 0x5BD},
                                Range{0x610, 0x61A},   Range{0x64B, 0x65F},   Range{0x1AB0, 0x1AFF},
                                Range{0x1DC0, 0x1DFF}, Range{0x200B, 0x200F}, Range{0x20D0, 0x20FF},
                                Range{0xFE00, 0xFE0F}, Range{0xFE20, 0xFE2F}};

template <typename Ranges>
bool isIn(const Ranges& ranges, char32_t value) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [&](const Range& range) { return value >= range.first && value <= range.last; });
}

std::size_t widthOf(char32_t value) { return isIn(kWidthless, value) ? 0 : isIn(kWide, value) ? 2 : 1; }

bool isControl(char32_t value) { return value < 0x20 || (value >= 0x7F && value < 0xA0); }

void append(DisplayText& out, std::string_view text, std::size_t width) {
  out.text += text;
  out.width += width;
}

}  // namespace

std::size_t displayWidth(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) {
    const CodePoint point = firstCodePoint(text);
    width += widthOf(point.value);
    text.remove_prefix(point.length);
  }
  return width;
}

DisplayText displayText(std::string_view text) {
  DisplayText out;
  for (std::size_t at = 0; at < text.size();) {
    const std::string_view rest = text.substr(at);
    const CodePoint point = firstCodePoint(rest);
    if (point.value == '\t') {
      append(out, " ", 1);
    } else if (isControl(point.value) || utf8Length(rest) == 0) {
      append(out, "?", 1);
    } else {
      append(out, rest.substr(0, point.length), widthOf(point.value));
    }
    at += point.length;
  }
  return out;
}

DisplayText firstColumns(const DisplayText& text, std::size_t columns) {
  if (text.width <= columns) return text;
  DisplayText out;
  for (std::size_t at = 0;;) {
    const CodePoint point = firstCodePoint(std::string_view(text.text).substr(at));
    if (out.width + widthOf(point.value) >= columns) break;
    append(out, std::string_view(text.text).substr(at, point.length), widthOf(point.value));
    at += point.length;
  }
  append(out, "…", 1);
  return out;
}

DisplayText lastColumns(const DisplayText& text, std::size_t columns) {
  if (text.width <= columns) return text;
  std::size_t at = 0;
  std::size_t width = text.width;
  while (width >= columns) {
    const CodePoint point = firstCodePoint(std::string_view(text.text).substr(at));
    width -= widthOf(point.value);
    at += point.length;
  }
  return {"…" + text.text.substr(at), width + 1};
}

}  // namespace vell::text
