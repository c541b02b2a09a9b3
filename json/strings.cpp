#include "json/strings.h"

#include <simdjson.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "json/error.h"
#include "text/utf8.h"

namespace vell::json {
namespace {

constexpr std::string_view shortEscapes = "\"\\/bfnrt";
constexpr std::string_view shortMeanings = "\"\\/\b\f\n\r\t";

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

/// The four digits of a \u escape at the start of `digits`, which were checked before.
std::uint32_t codeUnit(std::string_view digits) {
  std::uint32_t unit = 0;
  for (std::size_t i = 0; i < 4; ++i) unit = unit * 16 + static_cast<std::uint32_t>(hexDigit(digits[i]));
  return unit;
}

bool isHighSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
bool isSurrogate(std::uint32_t code) { return code >= 0xD800 && code <= 0xDFFF; }

std::uint32_t withoutSurrogate(std::uint32_t code) { return isSurrogate(code) ? 0xFFFD : code; }

/// Reads the escape whose backslash is at `at` and moves behind it. Surrogate escapes that pair are one
/// character.
std::uint32_t takeEscape(std::string_view raw, std::size_t& at) {
  const char kind = raw[at + 1];
  if (kind != 'u') {
    at += 2;
    return static_cast<unsigned char>(shortMeanings[shortEscapes.find(kind)]);
  }
  const std::uint32_t unit = codeUnit(raw.substr(at + 2));
  at += 6;
  if (!isHighSurrogate(unit) || raw.substr(at, 2) != "\\u") return unit;
  const std::uint32_t second = codeUnit(raw.substr(at + 2));
  if (!isLowSurrogate(second)) return unit;
  at += 6;
  return 0x10000 + ((unit - 0xD800) << 10) + (second - 0xDC00);
}

/// Hands unescaped stretches and escaped characters to `plain` and `character` in turn.
template <typename Plain, typename Character>
void walk(std::string_view raw, const Plain& plain, const Character& character) {
  for (std::size_t at = 0; at < raw.size();) {
    const std::size_t backslash = std::min(raw.find('\\', at), raw.size());
    plain(raw.substr(at, backslash - at));
    at = backslash;
    if (at < raw.size()) character(takeEscape(raw, at));
  }
}

void appendCharacter(std::uint32_t code, std::string& out) {
  const bool needsEscape = code < 0x20 || code == '"' || code == '\\';
  const std::size_t named =
      needsEscape ? shortMeanings.find(static_cast<char>(code)) : std::string_view::npos;
  if (named != std::string_view::npos) {
    out.append({'\\', shortEscapes[named]});
  } else if (needsEscape || isSurrogate(code)) {
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(code));
    out.append(escape);
  } else {
    text::appendUtf8(out, code);
  }
}

bool needsEscape(char c) { return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\'; }

/// `text` is UTF-8.
void appendEscaped(std::string_view text, std::string& out) {
  std::size_t plain = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!needsEscape(text[at])) continue;
    out.append(text, plain, at - plain);
    appendCharacter(static_cast<unsigned char>(text[at]), out);
    plain = at + 1;
  }
  out.append(text, plain, text.size() - plain);
}

}  // namespace

void appendString(std::string_view text, std::string& out) {
  out += '"';
  if (simdjson::validate_utf8(text.data(), text.size())) {
    appendEscaped(text, out);
  } else {
    appendEscaped(text::replaceInvalidUtf8(text), out);
  }
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
      if (at + i >= end || hexDigit(text[at + i]) < 0)
        throw ParseError("a \\u escape needs four hexadecimal digits", at);
    }
  }
}

void appendDecoded(std::string_view raw, LoneSurrogate treatment, std::string& out) {
  walk(
      raw, [&](std::string_view plain) { out.append(plain); },
      [&](std::uint32_t code) {
        text::appendUtf8(out, treatment == LoneSurrogate::replaced ? withoutSurrogate(code) : code);
      });
}

void appendNormalized(std::string_view raw, std::string& out) {
  walk(
      raw, [&](std::string_view plain) { out.append(plain); },
      [&](std::uint32_t code) { appendCharacter(code, out); });
}

}  // namespace vell::json
