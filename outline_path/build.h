#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "outline_path/expression.h"
#include "outline_path/grammar.h"
#include "outline_path/numbers.h"
#include "outline_path/strings.h"

// Tree building: the actions of the grammar's rules. A rule fills the node or the parts that its parent
// passed it; one that makes a node of its own fills a local one and hands it over when it has matched.

namespace vell::outline_path {

struct PathParts {
  bool absolute = false;
  std::vector<Step> steps;
};

struct StepParts {
  Axis axis = Axis::child;
  StepFilter filter;
  std::optional<Slice> slice;
};

struct FunctionParts {
  std::string name;
  std::vector<ValueExpression> arguments;
};

struct SliceParts {
  std::optional<std::int64_t> start, end;
  bool isRange = false;
};

template <typename Op>
struct TailParts {
  Op op{};
  ValueExpression right;
};

/// The longest beginning of the text that is a whole path or value.
struct TopLevel {
  std::optional<Expression>& expression;
  std::size_t end = 0;
};

template <typename Rule>
struct Build : tao::pegtl::nothing<Rule> {};

namespace actions {

namespace pegtl = tao::pegtl;
using pegtl::apply_mode;
using pegtl::rewind_mode;

/// The rule fills a new Local, which `Self::finish(in, local, outer)` then gives to the parent.
template <typename Self, typename Local>
struct Makes : pegtl::maybe_nothing {
  template <typename Rule, apply_mode A, rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename Outer>
  static bool match(Input& in, ParseContext& context, Outer& outer) {
    Local local{};
    if (!pegtl::match<Rule, A, M, Action, Control>(in, context, local)) return false;
    if constexpr (A == apply_mode::action) Self::finish(in, std::move(local), outer);
    return true;
  }
};

/// The rule fills the part of its parent that `Self::part(outer)` names.
template <typename Self>
struct Fills : pegtl::maybe_nothing {
  template <typename Rule, apply_mode A, rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename Outer>
  static bool match(Input& in, ParseContext& context, Outer& outer) {
    return pegtl::match<Rule, A, M, Action, Control>(in, context, Self::part(outer));
  }
};

/// Puts what was matched into a group.
template <typename Group, typename Expression>
struct Wraps {
  static void apply0(ParseContext&, Expression& out) { out = Expression{Group{Box(std::move(out))}}; }
};

/// Joins the operand that was matched before with the right side of an operator.
template <typename Self, typename Node, typename Expression>
struct Joins : Makes<Self, Expression> {
  template <typename Input>
  static void finish(const Input&, Expression&& right, Expression& out) {
    out = Expression{Node{Box(std::move(out)), Box(std::move(right))}};
  }
};

/// The same where the node holds which operator it was.
template <typename Self, typename Node, typename Op>
struct JoinsBy : Makes<Self, TailParts<Op>> {
  template <typename Input>
  static void finish(const Input&, TailParts<Op>&& tail, ValueExpression& out) {
    out = ValueExpression{Node{Box(std::move(out)), tail.op, Box(std::move(tail.right))}};
  }
};

template <typename Self>
struct FillsRight : Fills<Self> {
  template <typename Op>
  static ValueExpression& part(TailParts<Op>& tail) {
    return tail.right;
  }
};

/// Notes the operator that the rule spells.
template <auto op>
struct SetsOp {
  static void apply0(ParseContext&, TailParts<std::remove_const_t<decltype(op)>>& tail) { tail.op = op; }
};

}  // namespace actions

// Values

template <>
struct Build<grammar::AttributeName> {
  template <typename Input>
  static void apply(const Input& in, ParseContext&, ValueExpression& out) {
    out.node.emplace<Attribute>(in.string());
  }
  template <typename Input>
  static void apply(const Input& in, ParseContext&, PredicateExpression& out) {
    out.node.emplace<ContainsAttribute>(ContainsAttribute{Attribute(in.string())});
  }
};

template <>
struct Build<grammar::VariableName> {
  template <typename Input>
  static void apply(const Input& in, ParseContext&, ValueExpression& out) {
    out.node.emplace<Variable>(Variable{in.string()});
  }
};

template <>
struct Build<grammar::LiteralParser> {
  template <typename Input>
  static void apply(const Input& in, ParseContext&, ValueExpression& out) {
    out.node.emplace<Literal>(Literal{decodeString(in.string_view())});
  }
};

template <>
struct Build<grammar::NumberParser> {
  template <typename Input>
  static void apply(const Input& in, ParseContext&, ValueExpression& out) {
    out.node.emplace<double>(numberOf(in.string_view()));
  }
};

template <>
struct Build<grammar::BooleanParser> {
  template <typename Input>
  static void apply(const Input& in, ParseContext&, ValueExpression& out) {
    out.node.emplace<bool>(in.string_view() == kTrue);
  }
};

template <>
struct Build<grammar::NullParser> {
  static void apply0(ParseContext&, ValueExpression& out) { out.node.emplace<Null>(); }
};

template <>
struct Build<grammar::UnquotedParser> {
  template <typename Input>
  static void apply(const Input& in, ParseContext&, ValueExpression& out) {
    out.node.emplace<Unquoted>(Unquoted{in.string()});
  }
};

template <>
struct Build<grammar::FunctionCallParser>
    : actions::Makes<Build<grammar::FunctionCallParser>, FunctionParts> {
  template <typename Input>
  static void finish(const Input&, FunctionParts&& parts, ValueExpression& out) {
    out.node.emplace<FunctionCall>(std::move(parts.name), std::move(parts.arguments));
  }
};

template <>
struct Build<grammar::FunctionName> {
  template <typename Input>
  static void apply(const Input& in, ParseContext&, FunctionParts& parts) {
    parts.name = in.string();
  }
};

template <>
struct Build<grammar::ArgumentParser> : actions::Makes<Build<grammar::ArgumentParser>, ValueExpression> {
  template <typename Input>
  static void finish(const Input&, ValueExpression&& argument, FunctionParts& parts) {
    parts.arguments.push_back(std::move(argument));
  }
};

template <>
struct Build<grammar::PathArgumentParser>
    : actions::Makes<Build<grammar::PathArgumentParser>, PathExpression> {
  template <typename Input>
  static void finish(const Input&, PathExpression&& path, ValueExpression& out) {
    out.node = PathArgument{Box(std::move(path))};
  }
};

template <>
struct Build<grammar::ValueExpressionGroupParser> : actions::Wraps<ValueGroup, ValueExpression> {};

template <>
struct Build<grammar::Negation> : actions::Makes<Build<grammar::Negation>, ValueExpression> {
  template <typename Input>
  static void finish(const Input&, ValueExpression&& operand, ValueExpression& out) {
    out.node = Unary{UnaryOp::negate, Box(std::move(operand))};
  }
};

template <>
struct Build<grammar::Times> : actions::SetsOp<MultiplicativeOp::multiply> {};
template <>
struct Build<grammar::Over> : actions::SetsOp<MultiplicativeOp::divide> {};
template <>
struct Build<grammar::Plus> : actions::SetsOp<AdditiveOp::add> {};
template <>
struct Build<grammar::Minus> : actions::SetsOp<AdditiveOp::subtract> {};

template <>
struct Build<grammar::MultiplicativeOperand> : actions::FillsRight<Build<grammar::MultiplicativeOperand>> {};
template <>
struct Build<grammar::AdditiveOperand> : actions::FillsRight<Build<grammar::AdditiveOperand>> {};
template <>
struct Build<grammar::RightMultiplicativeOperand>
    : actions::FillsRight<Build<grammar::RightMultiplicativeOperand>> {};
template <>
struct Build<grammar::RightAdditiveOperand> : actions::FillsRight<Build<grammar::RightAdditiveOperand>> {};

template <>
struct Build<grammar::MultiplicativeTail>
    : actions::JoinsBy<Build<grammar::MultiplicativeTail>, Multiplicative, MultiplicativeOp> {};
template <>
struct Build<grammar::AdditiveTail> : actions::JoinsBy<Build<grammar::AdditiveTail>, Additive, AdditiveOp> {};
template <>
struct Build<grammar::RightMultiplicativeTail>
    : actions::JoinsBy<Build<grammar::RightMultiplicativeTail>, Multiplicative, MultiplicativeOp> {};
template <>
struct Build<grammar::RightAdditiveTail>
    : actions::JoinsBy<Build<grammar::RightAdditiveTail>, Additive, AdditiveOp> {};

// Predicates

template <>
struct Build<grammar::PredicateExpressionComparisonParser> : tao::pegtl::maybe_nothing {
  // Filled in place: a comparison is large. Where it fails, what is tried next overwrites it.
  template <typename Rule, tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M,
            template <typename...> class Action, template <typename...> class Control, typename Input>
  static bool match(Input& in, ParseContext& context, PredicateExpression& out) {
    auto& comparison = out.node.emplace<Comparison>();
    return tao::pegtl::match<Rule, A, M, Action, Control>(in, context, comparison);
  }
};

template <>
struct Build<grammar::LeftValue> : actions::Fills<Build<grammar::LeftValue>> {
  static ValueExpression& part(Comparison& comparison) { return comparison.left; }
};

template <>
struct Build<grammar::RightValue> : actions::Fills<Build<grammar::RightValue>> {
  static ValueExpression& part(Comparison& comparison) { return comparison.right; }
};

template <>
struct Build<grammar::RelationOpParser> {
  static void apply0(ParseContext& context, Comparison& comparison) {
    comparison.relation.op = static_cast<RelationOp>(context.entry);
  }
};

template <>
struct Build<grammar::RelationModifierParser>
    : actions::Makes<Build<grammar::RelationModifierParser>, RelationModifier> {
  template <typename Input>
  static void finish(const Input&, RelationModifier&& modifier, Comparison& comparison) {
    comparison.relation.modifier = modifier;
  }
};

template <>
struct Build<grammar::RelationModifierType> {
  static void apply0(ParseContext& context, RelationModifier& modifier) {
    modifier.type = static_cast<RelationModifierType>(context.entry);
  }
};

template <>
struct Build<grammar::LocaleAware> {
  static void apply0(ParseContext&, RelationModifier& modifier) { modifier.list = true; }
};

template <>
struct Build<grammar::PredicateExpressionNotParser>
    : actions::Makes<Build<grammar::PredicateExpressionNotParser>, PredicateExpression> {
  template <typename Input>
  static void finish(const Input&, PredicateExpression&& operand, PredicateExpression& out) {
    out.node = Not{Box(std::move(operand))};
  }
};

template <>
struct Build<grammar::PredicateExpressionGroupParser> : actions::Wraps<PredicateGroup, PredicateExpression> {
};

template <>
struct Build<grammar::PredicateExpressionContainsTextParser> {
  template <typename Input>
  static void apply(const Input& in, ParseContext&, PredicateExpression& out) {
    out.node.emplace<ContainsText>(ContainsText{decodeString(in.string_view())});
  }
};

template <>
struct Build<grammar::AndTail> : actions::Joins<Build<grammar::AndTail>, And, PredicateExpression> {};
template <>
struct Build<grammar::OrTail> : actions::Joins<Build<grammar::OrTail>, Or, PredicateExpression> {};

// Steps

template <>
struct Build<grammar::NamedAxis> {
  static void apply0(ParseContext& context, StepParts& step) { step.axis = static_cast<Axis>(context.entry); }
};
template <>
struct Build<grammar::FirstStepAxis> : Build<grammar::NamedAxis> {};

template <>
struct Build<grammar::DescendantOrSelfAxis> {
  static void apply0(ParseContext&, StepParts& step) { step.axis = Axis::descendantOrSelfShortcut; }
};

template <>
struct Build<grammar::AnyTypeTest> {
  static void apply0(ParseContext&, StepParts& step) { step.filter.typeTest = TypeTest::any; }
};

template <>
struct Build<grammar::NodeType> {
  static void apply0(ParseContext& context, StepParts& step) {
    step.filter.typeTest = static_cast<TypeTest>(context.entry);
  }
};

template <>
struct Build<grammar::StepPredicate> : tao::pegtl::maybe_nothing {
  // Filled where it will stay: a predicate is large.
  template <typename Rule, tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M,
            template <typename...> class Action, template <typename...> class Control, typename Input>
  static bool match(Input& in, ParseContext& context, StepParts& step) {
    auto& predicate = step.filter.predicate.emplace(PredicateExpression());
    if (tao::pegtl::match<Rule, A, M, Action, Control>(in, context, *predicate)) return true;
    step.filter.predicate.reset();
    return false;
  }
};

template <>
struct Build<grammar::StepContainsText> {
  template <typename Input>
  static void apply(const Input& in, ParseContext&, StepParts& step) {
    step.filter.predicate.emplace(PredicateExpression{ContainsText{in.string()}});
  }
};

template <>
struct Build<grammar::SliceParser> : actions::Makes<Build<grammar::SliceParser>, SliceParts> {
  template <typename Input>
  static void finish(const Input&, SliceParts&& slice, StepParts& step) {
    if (slice.isRange) {
      step.slice = SliceRange{slice.start, slice.end};
    } else {
      step.slice = SliceIndex{*slice.start};
    }
  }
};

template <>
struct Build<grammar::SliceStart> {
  static void apply0(ParseContext& context, SliceParts& slice) { slice.start = context.integer; }
};
template <>
struct Build<grammar::SliceColon> {
  static void apply0(ParseContext&, SliceParts& slice) { slice.isRange = true; }
};
template <>
struct Build<grammar::SliceEnd> {
  static void apply0(ParseContext& context, SliceParts& slice) { slice.end = context.integer; }
};

template <>
struct Build<grammar::StepParser> : actions::Makes<Build<grammar::StepParser>, StepParts> {
  template <typename Input>
  static void finish(const Input&, StepParts&& step, PathParts& path) {
    if (!step.filter.typeTest && !step.filter.predicate) step.filter.typeTest = TypeTest::any;
    // Most paths have one or two steps.
    if (path.steps.empty()) path.steps.reserve(2);
    path.steps.emplace_back(step.axis, std::move(step.filter), step.slice);
  }
};
template <>
struct Build<grammar::RelativeFirstStep> : Build<grammar::StepParser> {};

// Paths

template <>
struct Build<grammar::AbsoluteMarker> {
  static void apply0(ParseContext&, PathParts& path) { path.absolute = true; }
};

template <>
struct Build<grammar::PathParser> : actions::Makes<Build<grammar::PathParser>, PathParts> {
  template <typename Input>
  static void finish(const Input&, PathParts&& path, PathExpression& out) {
    out.node.emplace<Path>(path.absolute, std::move(path.steps));
  }
};

template <>
struct Build<grammar::PathExpressionGroupParser> : actions::Wraps<PathGroup, PathExpression> {};
template <>
struct Build<grammar::IntersectTail>
    : actions::Joins<Build<grammar::IntersectTail>, Intersect, PathExpression> {};
template <>
struct Build<grammar::ExceptTail> : actions::Joins<Build<grammar::ExceptTail>, Except, PathExpression> {};
template <>
struct Build<grammar::UnionTail> : actions::Joins<Build<grammar::UnionTail>, Union, PathExpression> {};

// The whole text

template <>
struct Build<grammar::TopLevelPath> : tao::pegtl::maybe_nothing {
  template <typename Rule, tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M,
            template <typename...> class Action, template <typename...> class Control, typename Input>
  static bool match(Input& in, ParseContext& context, TopLevel& top) {
    auto& path = std::get<PathExpression>(top.expression.emplace());
    const bool matched = tao::pegtl::match<Rule, A, M, Action, Control>(in, context, path);
    if (!matched) top.expression.reset();
    top.end = in.byte();
    return matched;
  }
};

template <>
struct Build<grammar::TopLevelValue> : actions::Makes<Build<grammar::TopLevelValue>, ValueExpression> {
  template <typename Input>
  static void finish(const Input& in, ValueExpression&& value, TopLevel& top) {
    if (top.expression && in.byte() <= top.end) return;
    top.expression = std::move(value);
    top.end = in.byte();
  }
};

}  // namespace vell::outline_path
