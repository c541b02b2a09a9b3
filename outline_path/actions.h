#pragma once

#include <charconv>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "outline_path/expression.h"
#include "outline_path/grammar.h"
#include "outline_path/literals.h"

// The actions of the grammar's rules build the tree. A rule fills the node, or the parts of one, that the
// rule around it passes to it. A rule that makes a node of its own fills parts of its own first and hands the
// node on when it has matched, so that an alternative that fails leaves nothing behind.

namespace vell::outline_path {

// Parts of nodes

template <typename Op>
struct BinaryTail {
  Op op{};
  ValueExpression right;
};
struct CallParts {
  std::string_view name;
  FunctionCall::Arguments arguments;
};
struct SliceParts {
  std::optional<std::int64_t> start, end;
  bool isRange = false;
};
struct StepParts {
  Axis axis = Axis::child;
  StepFilter filter;
  std::optional<Slice> slice;
};
struct PathParts {
  bool absolute = false;
  Steps steps;
};
/// The longest beginning of the text that is a whole path or value.
struct TopLevel {
  std::optional<Expression> expression;
  std::size_t end = 0;
};

template <typename Rule>
struct Action : tao::pegtl::nothing<Rule> {};

namespace actions {

namespace pegtl = tao::pegtl;
using pegtl::apply_mode;
using pegtl::rewind_mode;
using rules::Input;

/// The rule fills new `Parts`, which `Self::finish(parts, outer)` then hands on.
template <typename Self, typename Parts>
struct Makes : pegtl::maybe_nothing {
  template <typename Rule, apply_mode A, rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Outer>
  static bool match(Input& in, ParseState& state, Outer& outer) {
    // On the heap, so that a level of nesting takes little of the stack.
    const auto parts = std::make_unique<Parts>();
    if (!pegtl::match<Rule, A, M, Action, Control>(in, state, *parts)) return false;
    Self::finish(std::move(*parts), outer);
    return true;
  }
};

/// The rule fills the member `part` of what it is passed.
template <auto part>
struct Fills : pegtl::maybe_nothing {
  template <typename Rule, apply_mode A, rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Outer>
  static bool match(Input& in, ParseState& state, Outer& outer) {
    return pegtl::match<Rule, A, M, Action, Control>(in, state, outer.*part);
  }
};

/// The rule's expression becomes the inside of a Node.
template <typename Node, typename Inner>
struct Wraps : Makes<Wraps<Node, Inner>, Inner> {
  template <typename Outer>
  static void finish(Inner&& inner, Outer& outer) {
    outer.node = Node{Box(std::move(inner))};
  }
};

/// The rule's expression becomes the right side of a Node, the one that was read before it the left side.
template <typename Node, typename Side>
struct Joins : Makes<Joins<Node, Side>, Side> {
  static void finish(Side&& right, Side& outer) {
    Box left(std::exchange(outer, Side()));
    outer.node = Node{std::move(left), Box(std::move(right))};
  }
};
template <typename Node, typename Op>
struct JoinsValues : Makes<JoinsValues<Node, Op>, BinaryTail<Op>> {
  static void finish(BinaryTail<Op>&& tail, ValueExpression& outer) {
    Box left(std::exchange(outer, ValueExpression()));
    outer.node = Node{std::move(left), tail.op, Box(std::move(tail.right))};
  }
};

/// Notes the operator that the rule spells.
template <auto op>
struct SetsOp {
  static void apply0(ParseState&, BinaryTail<decltype(op)>& tail) { tail.op = op; }
};

}  // namespace actions

// clang-format off

// Values

template <> struct Action<grammar::NumberParser> {
  static void apply(const auto& in, ParseState&, ValueExpression& out) { out.node = numberOf(in.string_view()); }
};
template <> struct Action<grammar::BooleanParser> {
  static void apply(const auto& in, ParseState&, ValueExpression& out) { out.node = in.string_view() == trueWord; }
};
template <> struct Action<grammar::NullParser> {
  static void apply0(ParseState&, ValueExpression& out) { out.node = Null{}; }
};
template <> struct Action<grammar::LiteralParser> {
  static void apply(const auto& in, ParseState&, ValueExpression& out) { out.node = Literal{decodeString(in.string_view())}; }
};
template <> struct Action<grammar::UnquotedParser> {
  static void apply(const auto& in, ParseState&, ValueExpression& out) { out.node = Unquoted{std::string(in.string_view())}; }
};
template <> struct Action<grammar::VariableName> {
  static void apply(const auto& in, ParseState&, ValueExpression& out) { out.node = Variable{std::string(in.string_view())}; }
};
template <> struct Action<grammar::AttributeName> {
  static void apply(const auto& in, ParseState&, ValueExpression& out) { out.node = Attribute(in.string_view()); }
  static void apply(const auto& in, ParseState&, PredicateExpression& out) { out.node = ContainsAttribute{Attribute(in.string_view())}; }
};

template <> struct Action<grammar::FunctionCallParser> : actions::Makes<Action<grammar::FunctionCallParser>, CallParts> {
  static void finish(CallParts&& parts, ValueExpression& out) { out.node = FunctionCall(parts.name, std::move(parts.arguments)); }
};
template <> struct Action<grammar::FunctionName> {
  static void apply(const auto& in, ParseState&, CallParts& call) { call.name = in.string_view(); }
};
template <> struct Action<grammar::ArgumentParser> : actions::Makes<Action<grammar::ArgumentParser>, ValueExpression> {
  static void finish(ValueExpression&& argument, CallParts& call) { call.arguments.push_back(std::move(argument)); }
};
template <> struct Action<grammar::PathArgumentParser>         : actions::Wraps<PathArgument, PathExpression> {};
template <> struct Action<grammar::ValueExpressionGroupParser> : actions::Wraps<ValueGroup, ValueExpression> {};
template <> struct Action<grammar::Negation> : actions::Makes<Action<grammar::Negation>, ValueExpression> {
  static void finish(ValueExpression&& operand, ValueExpression& out) { out.node = Unary{UnaryOp::negate, Box(std::move(operand))}; }
};

template <> struct Action<grammar::Times> : actions::SetsOp<MultiplicativeOp::multiply> {};
template <> struct Action<grammar::Over>  : actions::SetsOp<MultiplicativeOp::divide> {};
template <> struct Action<grammar::Plus>  : actions::SetsOp<AdditiveOp::add> {};
template <> struct Action<grammar::Minus> : actions::SetsOp<AdditiveOp::subtract> {};

template <> struct Action<grammar::MultiplicativeOperand>      : actions::Fills<&BinaryTail<MultiplicativeOp>::right> {};
template <> struct Action<grammar::AdditiveOperand>            : actions::Fills<&BinaryTail<AdditiveOp>::right> {};

template <> struct Action<grammar::MultiplicativeTail>      : actions::JoinsValues<Multiplicative, MultiplicativeOp> {};
template <> struct Action<grammar::AdditiveTail>            : actions::JoinsValues<Additive, AdditiveOp> {};

// Predicates

template <> struct Action<grammar::PredicateExpressionContainsTextParser> {
  static void apply(const auto& in, ParseState&, PredicateExpression& out) { out.node = ContainsText{decodeString(in.string_view())}; }
};
template <> struct Action<grammar::ComparedValues> : actions::Makes<Action<grammar::ComparedValues>, Comparison> {
  static void finish(Comparison&& comparison, PredicateExpression& out) { out.node = std::move(comparison); }
};
template <> struct Action<grammar::LeftValue>  : actions::Fills<&Comparison::left> {};
template <> struct Action<grammar::RightValue> : actions::Fills<&Comparison::right> {};
template <> struct Action<grammar::RelationSign> {
  static void apply(const auto& in, ParseState&, Comparison& out) { out.relation.op = *relationAt(in.string_view()); }
};
template <> struct Action<grammar::RelationModifierLetter> {
  static void apply(const auto& in, ParseState&, Comparison& out) { out.relation.modifier = RelationModifier{*relationModifierOf(in.peek_char()), {}}; }
};
template <> struct Action<grammar::LocaleAware> {
  static void apply0(ParseState&, Comparison& out) { out.relation.modifier->list = true; }
};
template <> struct Action<grammar::PredicateExpressionNotParser>   : actions::Wraps<Not, PredicateExpression> {};
template <> struct Action<grammar::PredicateExpressionGroupParser> : actions::Wraps<PredicateGroup, PredicateExpression> {};
template <> struct Action<grammar::AndTail>                        : actions::Joins<And, PredicateExpression> {};
template <> struct Action<grammar::OrTail>                         : actions::Joins<Or, PredicateExpression> {};

// Steps

template <> struct Action<grammar::StepParser> : actions::Makes<Action<grammar::StepParser>, StepParts> {
  static void finish(StepParts&& parts, PathParts& path) {
    // A step without a filter takes any row.
    if (!parts.filter.predicate && !parts.filter.typeTest) parts.filter.typeTest = TypeTest::any;
    path.steps.emplace_back(parts.axis, std::move(parts.filter), parts.slice);
  }
};
template <> struct Action<grammar::RelativeFirstStep> : Action<grammar::StepParser> {};
template <> struct Action<grammar::NamedAxis> {
  static void apply(const auto& in, ParseState&, StepParts& step) { step.axis = *namedAxisOf(in.string_view()); }
};
template <> struct Action<grammar::DescendantOrSelfAxis> {
  static void apply0(ParseState&, StepParts& step) { step.axis = Axis::descendantOrSelfShortcut; }
};
template <> struct Action<grammar::TypeTestParser> {
  static void apply(const auto& in, ParseState&, StepParts& step) { step.filter.typeTest = typeTestOf(in.string_view()); }
};
template <> struct Action<grammar::StepPredicate> : actions::Makes<Action<grammar::StepPredicate>, PredicateExpression> {
  static void finish(PredicateExpression&& predicate, StepParts& step) { step.filter.predicate = std::move(predicate); }
};
template <> struct Action<grammar::StepContainsText> {
  static void apply(const auto& in, ParseState&, StepParts& step) { step.filter.predicate = PredicateExpression{ContainsText{std::string(in.string_view())}}; }
};

template <> struct Action<grammar::SliceParser> : actions::Makes<Action<grammar::SliceParser>, SliceParts> {
  static void finish(SliceParts&& parts, StepParts& step) {
    step.slice = parts.isRange ? Slice(SliceRange{parts.start, parts.end}) : Slice(SliceIndex{*parts.start});
  }
};
template <> struct Action<grammar::SliceStart> {
  static void apply(const auto& in, ParseState&, SliceParts& slice) { slice.start = integerOf(in.string_view()); }
};
template <> struct Action<grammar::SliceColon> {
  static void apply0(ParseState&, SliceParts& slice) { slice.isRange = true; }
};
template <> struct Action<grammar::SliceEnd> {
  static void apply(const auto& in, ParseState&, SliceParts& slice) { slice.end = integerOf(in.string_view()); }
};

// Paths

template <> struct Action<grammar::PathParser> : actions::Makes<Action<grammar::PathParser>, PathParts> {
  static void finish(PathParts&& parts, PathExpression& out) { out.node = Path(parts.absolute, std::move(parts.steps)); }
};
template <> struct Action<grammar::AbsoluteMarker> {
  static void apply0(ParseState&, PathParts& path) { path.absolute = true; }
};
template <> struct Action<grammar::PathExpressionGroupParser> : actions::Wraps<PathGroup, PathExpression> {};
template <> struct Action<grammar::IntersectTail>             : actions::Joins<Intersect, PathExpression> {};
template <> struct Action<grammar::ExceptTail>                : actions::Joins<Except, PathExpression> {};
template <> struct Action<grammar::UnionTail>                 : actions::Joins<Union, PathExpression> {};

// clang-format on

// The whole text

namespace actions {
/// Keeps the expression if it reaches further than the one before.
template <typename Root>
struct KeepsLongest : pegtl::maybe_nothing {
  template <typename Rule, apply_mode A, rewind_mode M, template <typename...> class Action,
            template <typename...> class Control>
  static bool match(Input& in, ParseState& state, TopLevel& top) {
    Root root;
    if (!pegtl::match<Rule, A, M, Action, Control>(in, state, root)) return false;
    const std::size_t end = rules::offsetOf(in, state);
    if (!top.expression || end > top.end) top = {Expression(std::move(root)), end};
    return true;
  }
};
}  // namespace actions

template <>
struct Action<grammar::TopLevelPath> : actions::KeepsLongest<PathExpression> {};
template <>
struct Action<grammar::TopLevelValue> : actions::KeepsLongest<ValueExpression> {};

}  // namespace vell::outline_path
