#include "outline_path/strings.h"

#include <array>
#include <charconv>

#include "outline_path/characters.h"
#include "text/utf8.h"

namespace vell::outline_path {
namespace {

struct Escape {
  char letter;
  char character;
};
constexpr std::array kEscapes{Escape{'"', '"'},  Escape{'\\', '\\'}, Escape{'/', '/'},  Escape{'b', '\b'},
                              Escape{'f', '\f'}, Escape{'n', '\n'},  Escape{'r', '\r'}, Escape{'t', '\t'}};

char32_t codeUnit(std::string_view digits) {
  std::uint32_t unit = 0;
  std::from_chars(digits.data(), digits.data() + 4, unit, 16);
  return unit;
}

/// Decodes the escape whose backslash `text` begins with; returns its length.
std::size_t decodeEscape(std::string_view text, std::string& out) {
  if (text[1] != 'u') {
    for (const Escape& escape : kEscapes) {
      if (escape.letter == text[1]) out += escape.character;
    }
    return 2;
  }
  const char32_t unit = codeUnit(text.substr(2));
  const bool isPair = unit >= 0xD800 && unit < 0xDC00;
  text::appendUtf8(out,
                   isPair ? 0x10000 + ((unit - 0xD800) << 10) + (codeUnit(text.substr(8)) - 0xDC00) : unit);
  return isPair ? 12 : 6;
}

void appendControl(std::string& out, unsigned char c) {
  constexpr std::string_view kHex = "0123456789abcdef";
  out += "\\u00";
  out += kHex[c >> 4];
  out += kHex[c & 15];
}

}  // namespace

std::string decodeString(std::string_view quoted) {
  const std::string_view inner = quoted.substr(1, quoted.size() - 2);
  if (inner.find('\\') == std::string_view::npos) return std::string(inner);
  std::string out;
  for (std::size_t at = 0; at < inner.size();) {
    const std::size_t escape = std::min(inner.find('\\', at), inner.size());
    out.append(inner.substr(at, escape - at));
    at = escape;
    if (at < inner.size()) at += decodeEscape(inner.substr(at), out);
  }
  return out;
}

std::string encodeString(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    const bool isControl = static_cast<unsigned char>(c) < 0x20;
    if (c != '"' && c != '\\' && !isControl) {
      out += c;
      continue;
    }
    char letter = 0;
    for (const Escape& escape : kEscapes) letter = escape.character == c ? escape.letter : letter;
    if (letter == 0) {
      appendControl(out, static_cast<unsigned char>(c));
    } else {
      out += '\\';
      out += letter;
    }
  }
  return out + '"';
}

}  // namespace vell::outline_path
