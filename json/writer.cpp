#include "json/writer.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace vell::json {
namespace {

/// 15 to 17 digits, the fewest that give the same double again; with a point or an exponent, so that it reads
/// as a double.
std::string textOf(double number) {
  std::array<char, 32> text;
  for (int digits = 15; digits <= 17; ++digits) {
    std::snprintf(text.data(), text.size(), "%.*g", digits, number);
    if (std::strtod(text.data(), nullptr) == number) break;
  }
  const std::string_view shown(text.data());
  return std::string(shown) + (shown.find_first_of(".e") == std::string_view::npos ? ".0" : "");
}

}  // namespace

Writer& Writer::key(std::string_view key) {
  separate();
  appendString(key, out_);
  out_ += ':';
  needsComma_ = false;
  return *this;
}

Writer& Writer::value(std::string_view text) {
  separate();
  appendString(text, out_);
  return *this;
}

Writer& Writer::value(double number) { return raw(std::isfinite(number) ? textOf(number) : "null"); }

Writer& Writer::raw(std::string_view json) {
  separate();
  out_ += json;
  return *this;
}

Writer& Writer::begin(char bracket) {
  separate();
  out_ += bracket;
  needsComma_ = false;
  return *this;
}

Writer& Writer::end(char bracket) {
  out_ += bracket;
  needsComma_ = true;
  return *this;
}

/// Puts the comma before a member or an element that is not the first.
void Writer::separate() {
  if (needsComma_) out_ += ',';
  needsComma_ = true;
}

}  // namespace vell::json
