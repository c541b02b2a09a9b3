#include "headless/evaluation/relation.h"

#include <regex.h>

#include <cmath>
#include <locale>
#include <memory>
#include <optional>

#include "headless/evaluation/text_folding.h"
#include "headless/model/timestamp.h"

namespace vell::headless {
namespace {

using outline_path::Relation;
using outline_path::RelationModifierType;
using outline_path::RelationOp;

template <typename T>
bool ordered(const T& left, RelationOp op, const T& right) {
  switch (op) {
    case RelationOp::equal:
      return left == right;
    case RelationOp::notEqual:
      return left != right;
    case RelationOp::lessThan:
      return left < right;
    case RelationOp::lessThanOrEqual:
      return left <= right;
    case RelationOp::greaterThan:
      return left > right;
    case RelationOp::greaterThanOrEqual:
      return left >= right;
    default:
      return false;
  }
}

bool isTextual(RelationOp op) { return op <= RelationOp::matches; }

bool numbersHold(double left, RelationOp op, double right) {
  if (std::isnan(left) || std::isnan(right)) return op == RelationOp::notEqual;
  return ordered(left, op, right);
}

std::optional<Timestamp> dateOf(std::string_view text) {
  constexpr std::size_t kDateLength = 10;
  if (text.size() == kDateLength) return parseTimestamp(std::string(text) + "T00:00Z");
  return parseTimestamp(text);
}

bool datesHold(std::string_view left, RelationOp op, std::string_view right) {
  const auto first = dateOf(left);
  const auto second = dateOf(right);
  if (!first || !second) return op == RelationOp::notEqual;
  return ordered(*first, op, *second);
}

bool endsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

bool textHolds(std::string_view left, RelationOp op, std::string_view right) {
  switch (op) {
    case RelationOp::contains:
      return left.find(right) != std::string_view::npos;
    case RelationOp::beginsWith:
      return left.substr(0, right.size()) == right;
    case RelationOp::endsWith:
      return endsWith(left, right);
    default:
      return ordered(left, op, right);
  }
}

/// The user's own order of words; the plain one where the system does not know the user's locale.
const std::collate<char>& collation() {
  static const std::locale locale = [] {
    try {
      return std::locale("");
    } catch (const std::runtime_error&) {
      return std::locale::classic();
    }
  }();
  return std::use_facet<std::collate<char>>(locale);
}

bool localeAwareHolds(const std::string& left, RelationOp op, const std::string& right) {
  if (isTextual(op) || op == RelationOp::equal || op == RelationOp::notEqual)
    return textHolds(left, op, right);
  const char* first = left.data();
  const char* second = right.data();
  return ordered(collation().compare(first, first + left.size(), second, second + right.size()), op, 0);
}

bool modifiedTextHolds(std::string_view left, const Relation& relation, std::string_view right) {
  const bool ignoreCase = relation.modifier->type == RelationModifierType::caseInsensitive;
  const bool localeAware = relation.modifier->list.value_or(false);
  if (relation.op == RelationOp::matches) return Pattern(right, ignoreCase).isIn(left);
  std::string first = ignoreCase ? foldCase(left) : std::string(left);
  std::string second = ignoreCase ? foldCase(right) : std::string(right);
  if (!localeAware) return textHolds(first, relation.op, second);
  return localeAwareHolds(foldAccents(first), relation.op, foldAccents(second));
}

bool plainHolds(const Value& left, RelationOp op, const Value& right) {
  const auto either = [&](auto type) {
    return std::holds_alternative<decltype(type)>(left) || std::holds_alternative<decltype(type)>(right);
  };
  if (!isTextual(op) && either(true)) return ordered(truthOf(left), op, truthOf(right));
  if (!isTextual(op) && either(0.0)) return numbersHold(numberOf(left), op, numberOf(right));
  std::string first, second;
  const std::string_view text = textOf(left, first);
  if (op == RelationOp::matches) return Pattern(textOf(right, second), false).isIn(text);
  return textHolds(text, op, textOf(right, second));
}

/// Spells the shorthands for classes of characters as POSIX does.
std::string posixPattern(std::string_view pattern) {
  std::string out;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const bool escapes = pattern[i] == '\\' && i + 1 < pattern.size();
    const char letter = escapes ? pattern[++i] : pattern[i];
    switch (escapes ? letter : '\0') {
      case 'd':
        out += "[0-9]";
        break;
      case 'D':
        out += "[^0-9]";
        break;
      case 'w':
        out += "[[:alnum:]_]";
        break;
      case 'W':
        out += "[^[:alnum:]_]";
        break;
      case 's':
        out += "[[:space:]]";
        break;
      case 'S':
        out += "[^[:space:]]";
        break;
      default:
        if (escapes) out += '\\';
        out += letter;
    }
  }
  return out;
}

constexpr std::size_t kLongestPattern = 1000;
/// Compiling a pattern takes as much as its counted repetitions multiply to.
constexpr double kMostRepetitions = 1000;
constexpr std::size_t kDeepestPattern = 100;

void checkEffort(std::string_view pattern) {
  double repetitions = 1;
  std::size_t depth = 0;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] == '(') ++depth;
    if (pattern[i] != '{') continue;
    const std::size_t end = std::min(pattern.find('}', i), pattern.size());
    const std::string_view bounds = pattern.substr(i + 1, end - i - 1);
    const double most = numberOf(bounds.substr(std::min(bounds.find(',') + 1, bounds.size())));
    repetitions *= std::isnan(most) || most < 1 ? 1 : most;
    const double least = numberOf(bounds.substr(0, bounds.find(',')));
    if (std::isnan(most) && least > 1) repetitions *= least;
  }
  if (pattern.size() > kLongestPattern || repetitions > kMostRepetitions || depth > kDeepestPattern) {
    throw EvaluationError("the pattern is too long or repeats too much to be searched for");
  }
}

}  // namespace

Pattern::Pattern(std::string_view pattern, bool ignoreCase) {
  checkEffort(pattern);
  const auto compiled = std::shared_ptr<regex_t>(new regex_t, [](regex_t* held) { delete held; });
  const std::string text = posixPattern(pattern);
  const int error =
      regcomp(compiled.get(), text.c_str(), REG_EXTENDED | REG_NOSUB | (ignoreCase ? REG_ICASE : 0));
  if (error != 0) {
    char reason[100];
    regerror(error, compiled.get(), reason, sizeof reason);
    throw EvaluationError("\"" + std::string(pattern) + "\" is no valid pattern: " + reason);
  }
  const std::shared_ptr<regex_t> held(compiled.get(), [compiled](regex_t* used) { regfree(used); });
  search_ = [held](std::string_view searched) {
    return regexec(held.get(), std::string(searched).c_str(), 0, nullptr, 0) == 0;
  };
}

bool Pattern::isIn(std::string_view text) const { return search_(text); }

bool holds(const Value& left, const Relation& relation, const Value& right) {
  if (isNothing(left) || isNothing(right)) {
    const bool same = isNothing(left) && isNothing(right);
    return relation.op == RelationOp::equal ? same : relation.op == RelationOp::notEqual && !same;
  }
  if (!relation.modifier) return plainHolds(left, relation.op, right);
  std::string first, second;
  const std::string_view leftText = textOf(left, first);
  const std::string_view rightText = textOf(right, second);
  const bool compares = !isTextual(relation.op);
  if (compares && relation.modifier->type == RelationModifierType::numericCompare) {
    return numbersHold(numberOf(left), relation.op, numberOf(right));
  }
  if (compares && relation.modifier->type == RelationModifierType::dateCompare) {
    return datesHold(leftText, relation.op, rightText);
  }
  return modifiedTextHolds(leftText, relation, rightText);
}

}  // namespace vell::headless
