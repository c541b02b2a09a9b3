#include "text/display_width.h"

#include <utf8proc.h>

#include "text/utf8.h"

namespace vell::text {
namespace {

bool isControl(char32_t value) { return value < 0x20 || (value >= 0x7F && value < 0xA0); }

std::size_t widthOf(char32_t value) {
  return isControl(value)
             ? 1
             : static_cast<std::size_t>(utf8proc_charwidth(static_cast<utf8proc_int32_t>(value)));
}

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
