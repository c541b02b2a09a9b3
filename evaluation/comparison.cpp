#include "evaluation/comparison.h"

#include <cmath>
#include <locale>

#include "evaluation/pattern.h"
#include "text/folding.h"

namespace vell::evaluation {
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

bool textHolds(std::string_view left, RelationOp op, std::string_view right) {
  switch (op) {
    case RelationOp::contains:
      return left.find(right) != std::string_view::npos;
    case RelationOp::beginsWith:
      return left.starts_with(right);
    case RelationOp::endsWith:
      return left.ends_with(right);
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
