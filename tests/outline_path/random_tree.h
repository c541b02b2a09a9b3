#pragma once

#include <random>
#include <string>

#include "outline_path/expression.h"

namespace vell::outline_path {

/// Makes random trees of those that a parse can give, at most `depth` levels of operators and groups deep.
class RandomTree {
 public:
  explicit RandomTree(unsigned seed) : random_(seed) {}

  Expression expression(int depth) {
    if (chance(5)) return pathSet(depth, 0);
    ValueExpression value = sum(depth);
    // A word alone is no value at the top.
    const bool isWord = std::holds_alternative<Unquoted>(innermost(value).node);
    return isWord ? Expression(pathSet(depth, 0)) : Expression(std::move(value));
  }

 private:
  std::size_t pick(std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_);
  }
  /// True in `tenths` of ten cases.
  bool chance(std::size_t tenths) { return pick(10) < tenths; }
  template <typename T, std::size_t count>
  T oneOf(const T (&items)[count]) {
    return items[pick(count)];
  }

  static const ValueExpression& innermost(const ValueExpression& value) {
    const auto* group = std::get_if<ValueGroup>(&value.node);
    return group == nullptr ? value : innermost(*group->inner);
  }

  std::string name() { return oneOf<const char*>({"a", "done", "and", "text", "x-1", "été", "_:b"}); }
  std::string text() { return oneOf<const char*>({"", "x", "two words", "q\"\\/\n\x01", "日本😀", "/("}); }

  PathExpression pathSet(int depth, std::size_t level) {
    if (level == 3)
      return chance(2) && depth > 0 ? PathExpression{PathGroup{Box(pathSet(depth - 1, 0))}} : path(depth);
    PathExpression left = pathSet(depth, level + 1);
    if (depth == 0 || !chance(2)) return left;
    Box first(std::move(left));
    Box second(pathSet(depth - 1, level));
    if (level == 0) return {Union{std::move(first), std::move(second)}};
    if (level == 1) return {Except{std::move(first), std::move(second)}};
    return {Intersect{std::move(first), std::move(second)}};
  }

  PathExpression path(int depth) {
    const bool absolute = chance(6);
    const std::size_t count = absolute ? pick(4) : 1 + pick(3);
    Steps steps;
    for (std::size_t i = 0; i < count; ++i) steps.push_back(step(depth, i > 0 || absolute));
    return {Path(absolute, std::move(steps))};
  }

  Step step(int depth, bool mayBeShort) {
    const Axis axis =
        oneOf<Axis>({Axis::descendantOrSelfShortcut, Axis::child, Axis::parentShortcut, Axis::self,
                     Axis::selfShortcut, Axis::run, Axis::precedingSibling, Axis::ancestorOrSelf});
    StepFilter filter;
    if (chance(7)) filter.typeTest = typeTests()[pick(typeTests().size())];
    if (!filter.typeTest || chance(5)) filter.predicate.emplace(disjunction(depth));
    if (!filter.typeTest && beginsWithWord(*filter.predicate)) filter.typeTest = TypeTest::any;
    const bool isShort = axis == Axis::descendantOrSelfShortcut;
    return Step(isShort && !mayBeShort ? Axis::child : axis, std::move(filter), slice());
  }

  /// Without a type test before it a word, or one behind "-", could be read as an axis or part of one.
  static bool beginsWithWord(const PredicateExpression& predicate) {
    if (const auto* node = std::get_if<Or>(&predicate.node)) return beginsWithWord(*node->left);
    if (const auto* node = std::get_if<And>(&predicate.node)) return beginsWithWord(*node->left);
    const auto* comparison = std::get_if<Comparison>(&predicate.node);
    return comparison != nullptr && beginsWithWord(comparison->left);
  }
  static bool beginsWithWord(const ValueExpression& value) {
    if (const auto* node = std::get_if<Additive>(&value.node)) return beginsWithWord(*node->left);
    if (const auto* node = std::get_if<Multiplicative>(&value.node)) return beginsWithWord(*node->left);
    return std::holds_alternative<Unquoted>(value.node);
  }

  std::optional<Slice> slice() {
    const auto bound = [this] { return static_cast<std::int64_t>(pick(7)) - 3; };
    const auto maybe = [&] { return chance(5) ? std::optional(bound()) : std::nullopt; };
    if (chance(7)) return std::nullopt;
    if (chance(5)) return SliceIndex{bound()};
    return SliceRange{maybe(), maybe()};
  }

  PredicateExpression disjunction(int depth) {
    PredicateExpression left = conjunction(depth);
    if (depth == 0 || !chance(2)) return left;
    return {Or{Box(std::move(left)), Box(disjunction(depth - 1))}};
  }

  PredicateExpression conjunction(int depth) {
    PredicateExpression left = test(depth);
    if (depth == 0 || !chance(2)) return left;
    return {And{Box(std::move(left)), Box(conjunction(depth - 1))}};
  }

  PredicateExpression test(int depth) {
    const std::size_t kind = pick(depth == 0 ? 3 : 5);
    if (kind == 0) return {ContainsAttribute{Attribute(name())}};
    if (kind == 1) return {ContainsText{text()}};
    if (kind == 2) return {Comparison{sum(depth), relation(), sum(depth)}};
    if (kind == 3) return {Not{Box(test(depth - 1))}};
    return {PredicateGroup{Box(disjunction(depth - 1))}};
  }

  Relation relation() {
    Relation relation{static_cast<RelationOp>(pick(10)), std::nullopt};
    if (chance(5)) return relation;
    relation.modifier = RelationModifier{static_cast<RelationModifierType>(pick(4)), std::nullopt};
    if (chance(5)) relation.modifier->list = true;
    return relation;
  }

  ValueExpression sum(int depth) {
    ValueExpression left = product(depth);
    if (depth == 0 || !chance(2)) return left;
    return {Additive{Box(std::move(left)), static_cast<AdditiveOp>(pick(2)), Box(sum(depth - 1))}};
  }

  ValueExpression product(int depth, bool asDivisor = false) {
    ValueExpression left = operand(depth, asDivisor);
    if (depth == 0 || !chance(2)) return left;
    const bool divides = chance(5);
    const auto op = divides ? MultiplicativeOp::divide : MultiplicativeOp::multiply;
    return {Multiplicative{Box(std::move(left)), op, Box(product(depth - 1, divides))}};
  }

  ValueExpression operand(int depth, bool asDivisor) {
    const std::size_t kind = pick(asDivisor ? 6 : 10);
    if (kind == 0) return {static_cast<double>(pick(1000)) / 8};
    if (kind == 1) return {Attribute(name())};
    if (kind == 2) return {Variable{name()}};
    if (kind == 3) return {Literal{text()}};
    if (kind == 4) return call(depth);
    if (kind == 5 && depth > 0) return {ValueGroup{Box(sum(depth - 1))}};
    if (kind == 5) return {1e20};
    if (kind == 6) return {Null{}};
    if (kind == 7) return {chance(5)};
    if (kind == 8) return {Unary{UnaryOp::negate, Box(operand(depth, false))}};
    return {Unquoted{oneOf<const char*>({"foo", "2024-01-02", "task", "1e5", "nulls"})}};
  }

  ValueExpression call(int depth) {
    FunctionCall::Arguments arguments;
    for (std::size_t i = depth > 0 ? pick(3) : 0; i > 0; --i) {
      arguments.push_back(chance(5) ? ValueExpression{PathArgument{Box(pathSet(depth - 1, 0))}}
                                    : sum(depth - 1));
    }
    return {
        FunctionCall(oneOf<const char*>({"count", "position", "focused-root", "f"}), std::move(arguments))};
  }

  std::mt19937 random_;
};

}  // namespace vell::outline_path
