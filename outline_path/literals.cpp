#include "outline_path/literals.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <locale>
#include <sstream>

#include "text/utf8.h"

namespace vell::outline_path {
namespace {

// With so few digits mantissa and power of ten are exact, and so is their quotient's rounding.
constexpr std::size_t exactDigits = 15;
constexpr std::array<double, exactDigits + 1> powersOfTen{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                          1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

double exactNumberOf(std::string_view digits) {
  std::uint64_t mantissa = 0;
  std::size_t fraction = 0;
  bool behindPoint = false;
  for (const char c : digits) {
    if (c == '.') {
      behindPoint = true;
      continue;
    }
    mantissa = mantissa * 10 + static_cast<std::uint64_t>(c - '0');
    fraction += behindPoint ? 1 : 0;
  }
  return static_cast<double>(mantissa) / powersOfTen[fraction];
}

double longNumberOf(std::string_view digits) {
  std::istringstream in{std::string(digits)};
  in.imbue(std::locale::classic());
  double number = 0;
  in >> number;
  // Some libraries fail for what is too small, too; it is 0 or nearly so.
  return in.fail() && number > 1 ? std::numeric_limits<double>::infinity() : number;
}

struct Decimal {
  std::string digits;
  /// The digits before the point; may be negative or beyond the digits.
  int point;
};

Decimal decimalOf(double number, int precision) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%.*e", precision, number);
  const std::string_view shown(text.data());
  const std::size_t exponent = shown.find('e');
  Decimal decimal{{}, 0};
  for (const char c : shown.substr(0, exponent)) {
    if (c >= '0' && c <= '9') decimal.digits += c;
  }
  const bool isPositive = shown[exponent + 1] == '+';
  std::from_chars(shown.data() + exponent + (isPositive ? 2 : 1), shown.data() + shown.size(), decimal.point);
  ++decimal.point;
  return decimal;
}

std::string plainText(const Decimal& decimal) {
  std::string digits = decimal.digits;
  int point = decimal.point;
  if (point <= 0) {
    digits.insert(0, static_cast<std::size_t>(1 - point), '0');
    point = 1;
  }
  const auto whole = static_cast<std::size_t>(point);
  if (digits.size() < whole) digits.append(whole - digits.size(), '0');
  std::string fraction = digits.substr(whole);
  while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
  return digits.substr(0, whole) + (fraction.empty() ? "" : "." + fraction);
}

struct Escape {
  char letter;
  char character;
};
constexpr std::array escapes{Escape{'"', '"'},  Escape{'\\', '\\'}, Escape{'/', '/'},  Escape{'b', '\b'},
                             Escape{'f', '\f'}, Escape{'n', '\n'},  Escape{'r', '\r'}, Escape{'t', '\t'}};

char32_t codeUnit(std::string_view digits) {
  std::uint32_t unit = 0;
  std::from_chars(digits.data(), digits.data() + 4, unit, 16);
  return unit;
}

/// Decodes the escape whose backslash `text` begins with; returns its length.
std::size_t decodeEscape(std::string_view text, std::string& out) {
  if (text[1] != 'u') {
    for (const Escape& escape : escapes) {
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
  constexpr std::string_view hex = "0123456789abcdef";
  out += "\\u00";
  out += hex[c >> 4];
  out += hex[c & 15];
}

}  // namespace

double numberOf(std::string_view digits) {
  return digits.size() <= exactDigits ? exactNumberOf(digits) : longNumberOf(digits);
}

std::string textOf(double number) {
  for (int precision = 0; precision < std::numeric_limits<double>::max_digits10; ++precision) {
    std::string text = plainText(decimalOf(number, precision));
    if (numberOf(text) == number) return text;
  }
  return plainText(decimalOf(number, std::numeric_limits<double>::max_digits10 - 1));
}

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
    for (const Escape& escape : escapes) letter = escape.character == c ? escape.letter : letter;
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
