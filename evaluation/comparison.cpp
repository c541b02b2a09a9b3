#include "evaluation/comparison.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <array>
#include <cmath>
#include <locale>
#include <optional>

#include "evaluation/context.h"
#include "text/folding.h"

namespace vell::evaluation {
namespace {

/// The library's own steps for one row's text; nested repetitions could otherwise go on for years. It does
/// not say how many it took, so a search is tried with few of them first.
constexpr std::uint32_t kFewSteps = 100, kMostSteps = 100'000;

PCRE2_SPTR unitsOf(std::string_view text) { return reinterpret_cast<PCRE2_SPTR>(text.data()); }

std::string inQuotes(std::string_view pattern) { return '"' + std::string(pattern) + '"'; }

pcre2_code* compile(std::string_view pattern, bool ignoreCase) {
  const std::uint32_t options = PCRE2_UTF | PCRE2_UCP | PCRE2_MATCH_INVALID_UTF | PCRE2_NEVER_BACKSLASH_C |
                                (ignoreCase ? PCRE2_CASELESS : 0);
  int error = 0;
  PCRE2_SIZE place = 0;
  pcre2_code* code = pcre2_compile(unitsOf(pattern), pattern.size(), options, &error, &place, nullptr);
  if (code != nullptr) return code;
  std::array<PCRE2_UCHAR, 120> reason{};
  pcre2_get_error_message(error, reason.data(), reason.size());
  throw EvaluationError(inQuotes(pattern) +
                        " is no valid pattern: " + reinterpret_cast<const char*>(reason.data()));
}

}  // namespace

struct Pattern::Compiled {
  Compiled(std::string_view pattern, bool ignoreCase)
      : text(pattern),
        code(compile(pattern, ignoreCase), pcre2_code_free),
        match(pcre2_match_data_create(1, nullptr), pcre2_match_data_free),
        limits(pcre2_match_context_create(nullptr), pcre2_match_context_free) {}

  int search(std::string_view in, std::uint32_t mostSteps) const {
    pcre2_set_match_limit(limits.get(), mostSteps);
    return pcre2_match(code.get(), unitsOf(in), in.size(), 0, 0, match.get(), limits.get());
  }

  template <typename T>
  using Held = std::unique_ptr<T, void (*)(T*)>;

  std::string text;
  Held<pcre2_code> code;
  Held<pcre2_match_data> match;
  Held<pcre2_match_context> limits;
};

Pattern::Pattern(std::string_view pattern, bool ignoreCase)
    : compiled_(std::make_shared<const Compiled>(pattern, ignoreCase)) {}

bool Pattern::isIn(std::string_view text, Work& work) const {
  // The library takes no null for an empty text.
  if (text.data() == nullptr) text = "";
  int result = PCRE2_ERROR_MATCHLIMIT;
  for (std::uint32_t steps = kFewSteps; steps <= kMostSteps && result == PCRE2_ERROR_MATCHLIMIT;
       steps *= 10) {
    work.spend(steps / 4);
    result = compiled_->search(text, steps);
  }
  if (result < 0 && result != PCRE2_ERROR_NOMATCH) {
    throw EvaluationError(inQuotes(compiled_->text) + " takes too long to be searched for");
  }
  return result >= 0;
}

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

bool datesHold(const Value& left, RelationOp op, const Value& right, const Dates& dates) {
  const auto first = dates.dateOf(left), second = dates.dateOf(right);
  if (!first || !second) return op == RelationOp::notEqual;
  if (first->index() == second->index()) return ordered(*first, op, *second);
  return ordered(dates.dayOf(*first), op, dates.dayOf(*second));
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

bool modifiedTextHolds(std::string_view left, const Relation& relation, std::string_view right, Work& work) {
  const bool ignoreCase = relation.modifier->type == RelationModifierType::caseInsensitive;
  const bool localeAware = relation.modifier->list.value_or(false);
  if (relation.op == RelationOp::matches) return Pattern(right, ignoreCase).isIn(left, work);
  std::string first = ignoreCase ? text::foldCase(left) : std::string(left);
  std::string second = ignoreCase ? text::foldCase(right) : std::string(right);
  if (!localeAware) return textHolds(first, relation.op, second);
  return localeAwareHolds(text::foldAccents(first), relation.op, text::foldAccents(second));
}

bool plainHolds(const Value& left, RelationOp op, const Value& right, Work& work, const Dates& dates) {
  const auto either = [&](auto type) {
    return std::holds_alternative<decltype(type)>(left) || std::holds_alternative<decltype(type)>(right);
  };
  if (!isTextual(op) && either(true)) return ordered(truthOf(left), op, truthOf(right));
  if (!isTextual(op) && (isDate(left) || isDate(right))) return datesHold(left, op, right, dates);
  if (!isTextual(op) && either(0.0)) return numbersHold(numberOf(left), op, numberOf(right));
  std::string first, second;
  const std::string_view text = textOf(left, first);
  if (op == RelationOp::matches) return Pattern(textOf(right, second), false).isIn(text, work);
  return textHolds(text, op, textOf(right, second));
}

}  // namespace

bool holds(const Value& left, const Relation& relation, const Value& right, Work& work, const Dates& dates) {
  if (isNull(left) || isNull(right)) {
    const bool same = isNull(left) && isNull(right);
    return relation.op == RelationOp::equal ? same : relation.op == RelationOp::notEqual && !same;
  }
  if (!relation.modifier) return plainHolds(left, relation.op, right, work, dates);
  const bool compares = !isTextual(relation.op);
  if (compares && relation.modifier->type == RelationModifierType::numericCompare) {
    return numbersHold(numberOf(left), relation.op, numberOf(right));
  }
  if (compares && relation.modifier->type == RelationModifierType::dateCompare) {
    return datesHold(left, relation.op, right, dates);
  }
  std::string first, second;
  return modifiedTextHolds(textOf(left, first), relation, textOf(right, second), work);
}

}  // namespace vell::evaluation
