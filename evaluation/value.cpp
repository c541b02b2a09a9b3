#include "evaluation/value.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "document/timestamp.h"
#include "outline_path/literals.h"

namespace vell::evaluation {
namespace {

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\n\v\f\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\n\v\f\r") - first + 1);
}

bool isDecimal(std::string_view text) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  const std::size_t point = std::min(text.find('.'), text.size());
  const std::string_view fraction = text.substr(std::min(point + 1, text.size()));
  return point + fraction.size() > 0 &&
         std::all_of(text.begin(), text.begin() + static_cast<long>(point), isDigit) &&
         std::all_of(fraction.begin(), fraction.end(), isDigit);
}

std::string textOfNumber(double number) {
  if (std::isnan(number)) return "NaN";
  if (std::isinf(number)) return number < 0 ? "-Infinity" : "Infinity";
  return (number < 0 ? "-" : "") + outline_path::textOf(std::abs(number));
}

std::string textOfDay(Day day) {
  constexpr std::size_t length = 10;
  const auto midnight = std::chrono::milliseconds(day.time_since_epoch()).count();
  return document::formatTimestamp(midnight).substr(0, length);
}

}  // namespace

double numberOf(std::string_view text) {
  text = trimmed(text);
  const bool negative = !text.empty() && text.front() == '-';
  if (negative) text.remove_prefix(1);
  if (!isDecimal(text)) return noNumber;
  const double number = outline_path::numberOf(text);
  return negative ? -number : number;
}

double numberOf(const Value& value) {
  if (const auto* number = std::get_if<double>(&value)) return *number;
  if (const auto* truth = std::get_if<bool>(&value)) return *truth ? 1 : 0;
  if (const auto* text = std::get_if<std::string_view>(&value)) return numberOf(*text);
  if (const auto* text = std::get_if<std::string>(&value)) return numberOf(std::string_view(*text));
  return noNumber;
}

bool truthOf(const Value& value) {
  if (isNull(value)) return false;
  if (const auto* truth = std::get_if<bool>(&value)) return *truth;
  if (const auto* number = std::get_if<double>(&value)) return *number != 0 && !std::isnan(*number);
  std::string buffer;
  const std::string_view text = textOf(value, buffer);
  return !text.empty() && text != "false";
}

std::string_view textOf(const Value& value, std::string& buffer) {
  if (const auto* text = std::get_if<std::string_view>(&value)) return *text;
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (const auto* truth = std::get_if<bool>(&value)) return *truth ? "true" : "false";
  if (const auto* number = std::get_if<double>(&value)) return buffer = textOfNumber(*number);
  if (const auto* day = std::get_if<Day>(&value)) return buffer = textOfDay(*day);
  if (const auto* moment = std::get_if<Moment>(&value))
    return buffer = document::formatTimestamp(moment->time_since_epoch().count());
  return {};
}

}  // namespace vell::evaluation
