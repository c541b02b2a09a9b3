#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

namespace vell::evaluation {

/// A path that parses but cannot be evaluated; the text says why.
class EvaluationError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a value expression gives for one row: nothing, a truth value, a number or text. Text that stands in
/// the outline or the expression is not copied, so a value lives no longer than both.
using Value = std::variant<std::monostate, bool, double, std::string_view, std::string>;

inline bool isNull(const Value& value) { return std::holds_alternative<std::monostate>(value); }
/// The text of a value that is text, else null.
inline const char* kindOf(const Value& value) {
  if (isNull(value)) return "nothing";
  if (std::holds_alternative<bool>(value)) return "a truth value";
  return std::holds_alternative<double>(value) ? "a number" : "text";
}

/// False for nothing, zero, no number, "" and "false".
bool truthOf(const Value& value);
/// Not a number for nothing and for text that is no number; 1 and 0 for true and false.
double numberOf(const Value& value);
double numberOf(std::string_view text);
/// The value as text, "" for nothing. Points into `value` or into `buffer`.
std::string_view textOf(const Value& value, std::string& buffer);

}  // namespace vell::evaluation
