#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

#include "evaluation/clock.h"

namespace vell::evaluation {

/// A path that parses but cannot be evaluated; the text says why.
class EvaluationError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a value expression gives for one row: nothing, a truth value, a number, a date or text. Text that
/// stands in the outline or the expression is not copied, so a value lives no longer than both.
using Value = std::variant<std::monostate, bool, double, Day, Moment, std::string_view, std::string>;

inline bool isNull(const Value& value) { return std::holds_alternative<std::monostate>(value); }
inline bool isDate(const Value& value) {
  return std::holds_alternative<Day>(value) || std::holds_alternative<Moment>(value);
}
/// The kind of a value in words.
inline const char* kindOf(const Value& value) {
  if (isNull(value)) return "nothing";
  if (std::holds_alternative<bool>(value)) return "a truth value";
  if (isDate(value)) return "a date";
  return std::holds_alternative<double>(value) ? "a number" : "text";
}

/// False for nothing, zero, no number, "" and "false".
bool truthOf(const Value& value);
/// Not a number for nothing, dates and text that is no number; 1 and 0 for true and false.
double numberOf(const Value& value);
double numberOf(std::string_view text);
/// The value as text, "" for nothing; a moment as rows are read, in UTC. Points into `value` or into
/// `buffer`.
std::string_view textOf(const Value& value, std::string& buffer);

}  // namespace vell::evaluation
