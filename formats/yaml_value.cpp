#include <algorithm>
#include <array>

#include "formats/document_header.h"
#include "formats/inline_markdown.h"
#include "json/writer.h"

namespace vell::formats {
namespace {

/// What YAML takes a scalar without quotes for.
enum class Kind { string, number, word };

bool isDigit(char c) { return c >= '0' && c <= '9'; }

Kind kindOf(std::string_view scalar) {
  constexpr std::array<std::string_view, 14> words = {
      "~", "null", "true", "false", "yes", "no", "on", "off", "y", "n", ".inf", ".nan", "+.inf", "-.inf"};
  std::string lower(scalar);
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
  if (std::count(words.begin(), words.end(), lower) > 0) return Kind::word;
  const std::size_t first = lower.find_first_not_of("+-.");
  const bool isNumber = first <= 2 && isDigit(lower[first]) &&  // dates and times, too
                        lower.find_first_not_of("0123456789abcdefxotz+-:._ ") == std::string::npos;
  return isNumber ? Kind::number : Kind::string;
}

/// True if it can stand without quotes, whatever YAML takes it for.
bool isPlainScalar(std::string_view value) {
  constexpr std::string_view indicators = "-?:,[]{}#&*!|>'\"%@`=<";
  if (value.empty() || trim(value) != value || std::any_of(value.begin(), value.end(), isControl))
    return false;
  const bool isNegative = value.front() == '-' && kindOf(value) == Kind::number;
  if (indicators.find(value.front()) != std::string_view::npos && !isNegative) return false;
  return !value.ends_with(':') && value.find(": ") == std::string_view::npos &&
         value.find(" #") == std::string_view::npos;
}

}  // namespace

std::string yamlValue(std::string_view value, std::string_view before) {
  const Kind kind = kindOf(value);
  const bool sameKind = kind == Kind::string || (isPlainScalar(before) && kind == kindOf(before));
  if (isPlainScalar(value) && sameKind) return std::string(value);
  std::string quoted;
  json::appendString(value, quoted);
  return quoted;
}

}  // namespace vell::formats
