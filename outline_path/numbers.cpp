#include "outline_path/numbers.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <locale>
#include <sstream>

namespace vell::outline_path {
namespace {

// With so few digits mantissa and power of ten are exact, and so is their quotient's rounding.
constexpr std::size_t kExactDigits = 15;
constexpr std::array<double, kExactDigits + 1> kPowersOfTen{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
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
  return static_cast<double>(mantissa) / kPowersOfTen[fraction];
}

// Apart, for the stream takes as much of the stack as all that lead here.
[[gnu::noinline]] double longNumberOf(std::string_view digits) {
  std::istringstream in{std::string(digits)};
  in.imbue(std::locale::classic());
  double number = 0;
  in >> number;
  return in.fail() ? std::numeric_limits<double>::infinity() : number;
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

}  // namespace

double numberOf(std::string_view digits) {
  return digits.size() <= kExactDigits ? exactNumberOf(digits) : longNumberOf(digits);
}

std::string textOf(double number) {
  for (int precision = 0; precision < std::numeric_limits<double>::max_digits10; ++precision) {
    std::string text = plainText(decimalOf(number, precision));
    if (numberOf(text) == number) return text;
  }
  return plainText(decimalOf(number, std::numeric_limits<double>::max_digits10 - 1));
}

}  // namespace vell::outline_path
