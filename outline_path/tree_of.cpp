#include "outline_path/tree_of.h"

#include <charconv>

#include "outline_path/in_place.h"
#include "outline_path/numbers.h"
#include "outline_path/strings.h"

namespace vell::outline_path {
namespace {

// The last part of an expression is made after it: a chain of them is a loop, however long.

PredicateExpression predicateOf(const Draft& draft);

auto boxOfValue(const Draft& draft) {
  return Box<ValueExpression>(InPlace{[&draft] { return valueOf(draft); }});
}
auto boxOfPredicate(const Draft& draft) {
  return Box<PredicateExpression>(InPlace{[&draft] { return predicateOf(draft); }});
}
auto boxOfPath(const Draft& draft) {
  return Box<PathExpression>(InPlace{[&draft] { return pathOf(draft); }});
}

template <typename Expression>
auto later() {
  return Box<Expression>(typename Box<Expression>::ForLater());
}

/// What `begun` makes of the draft, and then its last part, of that the last, and so on.
template <typename Expression, Expression (*begun)(const Draft&)>
Expression whole(const Draft& draft) {
  Expression first = begun(draft);
  const Draft* part = &draft;
  for (auto* last = lastPart(first); last != nullptr; last = lastPart(**last)) {
    part = part->right;
    *last = Box<Expression>(InPlace{[part] { return begun(*part); }});
  }
  return first;
}

/// A node of this kind, in place.
template <typename Alternative, typename Expression, typename Make>
Expression made(Make make) {
  return Expression{typename Expression::Node(std::in_place_type<Alternative>, InPlace<Make>{make})};
}

FunctionCall callOf(const Draft& draft) {
  FunctionCall::Arguments arguments;
  arguments.reserve(draft.count);
  for (const Draft* argument = draft.left; argument != nullptr; argument = argument->next)
    arguments.emplace_back(InPlace{[argument] { return valueOf(*argument); }});
  return {draft.text(), std::move(arguments)};
}

Relation relationOf(const Draft& draft) {
  Relation relation{static_cast<RelationOp>(draft.entry), std::nullopt};
  if (draft.detail == 0) return relation;
  relation.modifier = RelationModifier{static_cast<RelationModifierType>(draft.detail - 1), std::nullopt};
  if (draft.localeAware) relation.modifier->list = true;
  return relation;
}

PredicateExpression beginOfPredicate(const Draft& draft) {
  using Kind = Draft::Kind;
  using Predicate = PredicateExpression;
  switch (draft.kind) {
    case Kind::attribute:
      return made<ContainsAttribute, Predicate>([&] { return ContainsAttribute{Attribute(draft.text())}; });
    case Kind::comparison:
      return made<Comparison, Predicate>([&] {
        return Comparison{valueOf(*draft.left), relationOf(draft), valueOf(*draft.right)};
      });
    case Kind::orOf:
      return {Or{boxOfPredicate(*draft.left), later<Predicate>()}};
    case Kind::andOf:
      return {And{boxOfPredicate(*draft.left), later<Predicate>()}};
    case Kind::notOf:
      return {Not{later<Predicate>()}};
    case Kind::predicateGroup:
      return {PredicateGroup{later<Predicate>()}};
    case Kind::literal:
      return made<ContainsText, Predicate>([&] { return ContainsText{decodeString(draft.text())}; });
    default:
      return made<ContainsText, Predicate>([&] { return ContainsText{std::string(draft.text())}; });
  }
}

PredicateExpression predicateOf(const Draft& draft) {
  return whole<PredicateExpression, beginOfPredicate>(draft);
}

std::optional<std::int64_t> integerIn(std::string_view digits) {
  std::int64_t integer = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), integer);
  return error == std::errc() ? std::optional(integer) : std::nullopt;
}

Slice sliceOf(std::string_view brackets) {
  const std::string_view bounds = brackets.substr(1, brackets.size() - 2);
  const std::size_t colon = bounds.find(':');
  if (colon == std::string_view::npos) return SliceIndex{*integerIn(bounds)};
  return SliceRange{integerIn(bounds.substr(0, colon)), integerIn(bounds.substr(colon + 1))};
}

Step stepOf(const Draft& draft) {
  const auto axis = static_cast<Axis>(draft.entry);
  const std::optional<TypeTest> typeTest =
      draft.detail == 0 ? std::nullopt : std::optional(static_cast<TypeTest>(draft.detail - 1));
  const std::optional<Slice> slice = draft.length == 0 ? std::nullopt : std::optional(sliceOf(draft.text()));
  if (draft.left == nullptr) return {axis, {typeTest.value_or(TypeTest::any), std::nullopt}, slice};
  return {axis, typeTest, InPlace{[&draft] { return predicateOf(*draft.left); }}, slice};
}

Path stepsOf(const Draft& draft) {
  Steps steps;
  steps.reserve(draft.count);
  for (const Draft* step = draft.left; step != nullptr; step = step->next)
    steps.emplace_back(InPlace{[step] { return stepOf(*step); }});
  return {draft.entry != 0, std::move(steps)};
}

ValueExpression beginOfValue(const Draft& draft) {
  using Kind = Draft::Kind;
  using Value = ValueExpression;
  switch (draft.kind) {
    case Kind::boolean:
      return {draft.text() == kTrue};
    case Kind::number:
      return {numberOf(draft.text())};
    case Kind::attribute:
      return made<Attribute, Value>([&] { return Attribute(draft.text()); });
    case Kind::variable:
      return made<Variable, Value>([&] { return Variable{std::string(draft.text())}; });
    case Kind::literal:
      return made<Literal, Value>([&] { return Literal{decodeString(draft.text())}; });
    case Kind::unquoted:
      return made<Unquoted, Value>([&] { return Unquoted{std::string(draft.text())}; });
    case Kind::call:
      return made<FunctionCall, Value>([&] { return callOf(draft); });
    case Kind::unary:
      return {Unary{static_cast<UnaryOp>(draft.entry), later<Value>()}};
    case Kind::additive:
      return {Additive{boxOfValue(*draft.left), static_cast<AdditiveOp>(draft.entry), later<Value>()}};
    case Kind::multiplicative:
      return {Multiplicative{boxOfValue(*draft.left), static_cast<MultiplicativeOp>(draft.entry),
                             later<Value>()}};
    case Kind::valueGroup:
      return {ValueGroup{later<Value>()}};
    case Kind::pathArgument:
      return {PathArgument{boxOfPath(*draft.right)}};
    default:
      return {Null{}};
  }
}

PathExpression beginOfPath(const Draft& draft) {
  using Kind = Draft::Kind;
  switch (draft.kind) {
    case Kind::unionOf:
      return {Union{boxOfPath(*draft.left), later<PathExpression>()}};
    case Kind::except:
      return {Except{boxOfPath(*draft.left), later<PathExpression>()}};
    case Kind::intersect:
      return {Intersect{boxOfPath(*draft.left), later<PathExpression>()}};
    case Kind::pathGroup:
      return {PathGroup{later<PathExpression>()}};
    default:
      return made<Path, PathExpression>([&] { return stepsOf(draft); });
  }
}

}  // namespace

ValueExpression valueOf(const Draft& draft) { return whole<ValueExpression, beginOfValue>(draft); }
PathExpression pathOf(const Draft& draft) { return whole<PathExpression, beginOfPath>(draft); }

}  // namespace vell::outline_path
