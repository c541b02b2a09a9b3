#include "json/escapes.h"

#include <simdjson.h>

#include <array>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <cstdio>

#include "json/error.h"
#include "text/utf8.h"

namespace vell::json {
namespace {

constexpr std::string_view shortEscapes = "\"\\/bfnrt";
// What they stand for, in the same order.
constexpr std::string_view shortMeanings = "\"\\/\b\f\n\r\t";

// From here on room is made at once: an escape for each quote of JSON text makes it longer by about a
// seventh.
constexpr std::size_t largeText = 4096;

/// The four digits of a \u escape at the start of `digits`, which were checked before.
char32_t codeUnit(std::string_view digits) {
  std::uint32_t unit = 0;
  std::from_chars(digits.data(), digits.data() + 4, unit, 16);
  return unit;
}

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
bool isSurrogate(char32_t character) { return isHighSurrogate(character) || isLowSurrogate(character); }

/// Reads the escape that `raw` begins with and takes it away. Surrogate escapes that pair are one character.
char32_t takeEscape(std::string_view& raw) {
  const char kind = raw[1];
  raw.remove_prefix(2);
  if (kind != 'u') return static_cast<unsigned char>(shortMeanings[shortEscapes.find(kind)]);
  const char32_t unit = codeUnit(raw);
  raw.remove_prefix(4);
  if (!isHighSurrogate(unit) || !raw.starts_with("\\u")) return unit;
  const char32_t second = codeUnit(raw.substr(2));
  if (!isLowSurrogate(second)) return unit;
  raw.remove_prefix(6);
  return 0x10000 + ((unit - 0xD800) << 10) + (second - 0xDC00);
}

/// Appends what stands unescaped as it is, and hands escaped characters to `append`.
template <typename Append>
void forEachEscape(std::string_view raw, std::string& out, const Append& append) {
  while (!raw.empty()) {
    const std::string_view plain = raw.substr(0, raw.find('\\'));
    out += plain;
    raw.remove_prefix(plain.size());
    if (!raw.empty()) append(takeEscape(raw));
  }
}

bool needsEscape(char32_t character) {
  return character < 0x20 || character == '"' || character == '\\' || isSurrogate(character);
}

/// Which bytes of UTF-8 need an escape.
constexpr auto escapedBytes = [] {
  std::array<bool, 256> escaped{};
  for (std::size_t control = 0; control < 0x20; ++control) escaped[control] = true;
  escaped['"'] = escaped['\\'] = true;
  return escaped;
}();

void appendEscape(char32_t character, std::string& out) {
  const std::size_t named =
      character < 0x80 ? shortMeanings.find(static_cast<char>(character)) : std::string_view::npos;
  if (named != std::string_view::npos) {
    out.append({'\\', shortEscapes[named]});
  } else {
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(character));
    out.append(escape);
  }
}

}  // namespace

void appendString(std::string_view text, std::string& out) {
  if (!simdjson::validate_utf8(text.data(), text.size())) {
    return appendString(text::replaceInvalidUtf8(text), out);
  }
  if (text.size() >= largeText) out.reserve(out.size() + text.size() + text.size() / 5);
  out += '"';
  std::size_t plain = 0;  // where the stretch begins that needs no escape
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (!escapedBytes[byte]) continue;
    out.append(text, plain, at - plain);
    plain = at;
    if (byte == '"' || byte == '\\') {
      out += '\\';  // and the character begins the next stretch
    } else {
      appendEscape(byte, out);
      ++plain;
    }
  }
  out.append(text, plain);
  out += '"';
}

std::string quoted(std::string_view text) {
  std::string literal;
  appendString(text, literal);
  return literal;
}

void checkEscapes(std::string_view text, std::size_t begin, std::size_t end) {
  for (std::size_t at = begin; (at = text.find('\\', at)) < end; at += 2) {
    const char kind = text[at + 1];
    if (shortEscapes.find(kind) != std::string_view::npos) continue;
    if (kind != 'u') throw ParseError("a string holds an unknown escape", at);
    for (std::size_t i = 2; i < 6; ++i) {
      if (at + i >= end || std::isxdigit(static_cast<unsigned char>(text[at + i])) == 0)
        throw ParseError("a \\u escape needs four hexadecimal digits", at);
    }
  }
}

std::string unescaped(std::string_view raw, LoneSurrogate treatment) {
  std::string text;
  text.reserve(raw.size());
  forEachEscape(raw, text, [&](char32_t character) {
    const bool isReplaced = isSurrogate(character) && treatment == LoneSurrogate::replaced;
    text::appendUtf8(text, isReplaced ? 0xFFFD : character);
  });
  return text;
}

void appendReescaped(std::string_view raw, std::string& out) {
  forEachEscape(raw, out, [&](char32_t character) {
    needsEscape(character) ? appendEscape(character, out) : text::appendUtf8(out, character);
  });
}

}  // namespace vell::json
