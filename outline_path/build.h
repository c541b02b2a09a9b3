#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "outline_path/grammar.h"

// The actions of the grammar's rules: they note what was matched as drafts. A rule fills the draft or the
// parts that its parent passed it; one that has parts of its own makes a draft of them when it has matched.

namespace vell::outline_path {

/// A part that a rule is to fill.
using Slot = Draft*;

/// Drafts one behind the other.
struct DraftList {
  void append(Draft* draft) {
    draft->next = nullptr;
    (last == nullptr ? first : last->next) = draft;
    last = draft;
  }
  Draft* first = nullptr;
  Draft* last = nullptr;
};

struct PathParts {
  bool absolute = false;
  DraftList steps;
};

struct StepParts {
  Axis axis = Axis::child;
  /// As its number plus one.
  std::uint8_t typeTest = 0;
  Slot predicate = nullptr;
  std::string_view slice;
};

struct FunctionParts {
  std::string_view name;
  DraftList arguments;
};

struct ComparisonParts {
  Slot left = nullptr, right = nullptr;
  std::uint8_t op = 0;
  std::uint8_t modifier = 0;
  bool localeAware = false;
};

struct SignParts {
  std::uint8_t op = 0;
};
struct TailParts : SignParts {
  Slot right = nullptr;
};

/// The longest beginning of the text that is a whole path or value.
struct TopLevel {
  Slot expression = nullptr;
  bool isPath = false;
  std::size_t end = 0;
};

template <typename Rule>
struct Build : tao::pegtl::nothing<Rule> {};

namespace actions {

namespace pegtl = tao::pegtl;
using pegtl::apply_mode;
using pegtl::rewind_mode;
using Kind = Draft::Kind;

/// The rule fills a new Local, which `Self::finish(in, context, local, outer)` then gives to the parent.
template <typename Self, typename Local>
struct Makes : pegtl::maybe_nothing {
  template <typename Rule, apply_mode A, rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename Outer>
  static bool match(Input& in, ParseContext& context, Outer& outer) {
    Local local{};
    if (!pegtl::match<Rule, A, M, Action, Control>(in, context, local)) return false;
    if constexpr (A == apply_mode::action) Self::finish(in, context, local, outer);
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

/// Notes the text of what has no parts.
template <Kind kind>
struct Leaf {
  template <typename Input>
  static void apply(const Input& in, ParseContext& context, Slot& out) {
    out = context.drafts.addText(kind, in.string_view());
  }
};

/// Puts what was matched into a node of its own.
template <Kind kind>
struct Wraps {
  static void apply0(ParseContext& context, Slot& out) { out = context.drafts.addParts(kind, nullptr, out); }
};

/// Joins the operand that was matched before with the right side of an operator.
template <Kind kind>
struct Joins : Makes<Joins<kind>, Slot> {
  static constexpr Kind kKind = kind;
  template <typename Input>
  static void finish(const Input&, ParseContext& context, Slot right, Slot& out) {
    out = context.drafts.addParts(kind, out, right);
  }
};

/// The same where the node holds which operator it was.
template <Kind kind>
struct JoinsBy : Makes<JoinsBy<kind>, TailParts> {
  static constexpr Kind kKind = kind;
  template <typename Input>
  static void finish(const Input&, ParseContext& context, const TailParts& tail, Slot& out) {
    out = context.drafts.addParts(kind, out, tail.right);
    out->entry = tail.op;
  }
};

struct FillsRight : Fills<FillsRight> {
  template <typename Parts>
  static Slot& part(Parts& parts) {
    return parts.right;
  }
};

/// Notes the operator that the rule spells.
template <auto op>
struct SetsOp {
  static void apply0(ParseContext&, SignParts& sign) { sign.op = static_cast<std::uint8_t>(op); }
};

}  // namespace actions

// clang-format off

// Values
template <> struct Build<grammar::AttributeName>  : actions::Leaf<Draft::Kind::attribute> {};
template <> struct Build<grammar::VariableName>   : actions::Leaf<Draft::Kind::variable> {};
template <> struct Build<grammar::LiteralParser>  : actions::Leaf<Draft::Kind::literal> {};
template <> struct Build<grammar::NumberParser>   : actions::Leaf<Draft::Kind::number> {};
template <> struct Build<grammar::BooleanParser>  : actions::Leaf<Draft::Kind::boolean> {};
template <> struct Build<grammar::NullParser>     : actions::Leaf<Draft::Kind::null> {};
template <> struct Build<grammar::UnquotedParser> : actions::Leaf<Draft::Kind::unquoted> {};

template <> struct Build<grammar::PathArgumentParser>         : actions::Wraps<Draft::Kind::pathArgument> {};
template <> struct Build<grammar::ValueExpressionGroupParser> : actions::Wraps<Draft::Kind::valueGroup> {};
template <> struct Build<grammar::Negation>                   : actions::Wraps<Draft::Kind::unary> {};

template <> struct Build<grammar::Times> : actions::SetsOp<MultiplicativeOp::multiply> {};
template <> struct Build<grammar::Over>  : actions::SetsOp<MultiplicativeOp::divide> {};
template <> struct Build<grammar::Plus>  : actions::SetsOp<AdditiveOp::add> {};
template <> struct Build<grammar::Minus> : actions::SetsOp<AdditiveOp::subtract> {};

template <> struct Build<grammar::MultiplicativeOperand>      : actions::FillsRight {};
template <> struct Build<grammar::AdditiveOperand>            : actions::FillsRight {};
template <> struct Build<grammar::RightMultiplicativeOperand> : actions::FillsRight {};
template <> struct Build<grammar::RightAdditiveOperand>       : actions::FillsRight {};

template <> struct Build<grammar::MultiplicativeTail>      : actions::JoinsBy<Draft::Kind::multiplicative> {};
template <> struct Build<grammar::AdditiveTail>            : actions::JoinsBy<Draft::Kind::additive> {};
template <> struct Build<grammar::RightMultiplicativeTail> : actions::JoinsBy<Draft::Kind::multiplicative> {};
template <> struct Build<grammar::RightAdditiveTail>       : actions::JoinsBy<Draft::Kind::additive> {};

// Predicates
template <> struct Build<grammar::PredicateExpressionContainsTextParser> : actions::Leaf<Draft::Kind::literal> {};
template <> struct Build<grammar::PredicateExpressionNotParser>          : actions::Wraps<Draft::Kind::notOf> {};
template <> struct Build<grammar::PredicateExpressionGroupParser>        : actions::Wraps<Draft::Kind::predicateGroup> {};
template <> struct Build<grammar::AndTail>                               : actions::Joins<Draft::Kind::andOf> {};
template <> struct Build<grammar::OrTail>                                : actions::Joins<Draft::Kind::orOf> {};
template <> struct Build<grammar::RightValue>                            : actions::FillsRight {};

// Paths
template <> struct Build<grammar::PathExpressionGroupParser> : actions::Wraps<Draft::Kind::pathGroup> {};
template <> struct Build<grammar::IntersectTail>             : actions::Joins<Draft::Kind::intersect> {};
template <> struct Build<grammar::ExceptTail>                : actions::Joins<Draft::Kind::except> {};
template <> struct Build<grammar::UnionTail>                 : actions::Joins<Draft::Kind::unionOf> {};

// clang-format on

// Functions

template <>
struct Build<grammar::FunctionCallParser>
    : actions::Makes<Build<grammar::FunctionCallParser>, FunctionParts> {
  template <typename Input>
  static void finish(const Input&, ParseContext& context, const FunctionParts& parts, Slot& out) {
    out = context.drafts.addText(Draft::Kind::call, parts.name, parts.arguments.first);
  }
};

template <>
struct Build<grammar::FunctionName> {
  template <typename Input>
  static void apply(const Input& in, ParseContext&, FunctionParts& parts) {
    parts.name = in.string_view();
  }
};

template <>
struct Build<grammar::ArgumentParser> : actions::Makes<Build<grammar::ArgumentParser>, Slot> {
  template <typename Input>
  static void finish(const Input&, ParseContext&, Slot argument, FunctionParts& parts) {
    parts.arguments.append(argument);
  }
};

// Comparisons

template <>
struct Build<grammar::PredicateExpressionComparisonParser>
    : actions::Makes<Build<grammar::PredicateExpressionComparisonParser>, ComparisonParts> {
  template <typename Input>
  static void finish(const Input&, ParseContext& context, const ComparisonParts& parts, Slot& out) {
    out = context.drafts.addParts(Draft::Kind::comparison, parts.left, parts.right);
    out->entry = parts.op;
    out->detail = parts.modifier;
    out->localeAware = parts.localeAware;
  }
};

template <>
struct Build<grammar::LeftValue> : actions::Fills<Build<grammar::LeftValue>> {
  static Slot& part(ComparisonParts& comparison) { return comparison.left; }
};

template <>
struct Build<grammar::RelationOpParser> {
  static void apply0(ParseContext& context, ComparisonParts& comparison) { comparison.op = context.entry; }
};

template <>
struct Build<grammar::RelationModifierType> {
  static void apply0(ParseContext& context, ComparisonParts& comparison) {
    comparison.modifier = static_cast<std::uint8_t>(context.entry + 1);
  }
};

template <>
struct Build<grammar::LocaleAware> {
  static void apply0(ParseContext&, ComparisonParts& comparison) { comparison.localeAware = true; }
};

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
  static void apply0(ParseContext&, StepParts& step) {
    step.typeTest = static_cast<std::uint8_t>(TypeTest::any) + 1;
  }
};

template <>
struct Build<grammar::NodeType> {
  static void apply0(ParseContext& context, StepParts& step) {
    step.typeTest = static_cast<std::uint8_t>(context.entry + 1);
  }
};

template <>
struct Build<grammar::StepPredicate> : actions::Makes<Build<grammar::StepPredicate>, Slot> {
  template <typename Input>
  static void finish(const Input&, ParseContext&, Slot predicate, StepParts& step) {
    step.predicate = predicate;
  }
};

template <>
struct Build<grammar::StepContainsText> {
  template <typename Input>
  static void apply(const Input& in, ParseContext& context, StepParts& step) {
    step.predicate = context.drafts.addText(Draft::Kind::unquoted, in.string_view());
  }
};

template <>
struct Build<grammar::SliceParser> {
  template <typename Input>
  static void apply(const Input& in, ParseContext&, StepParts& step) {
    step.slice = in.string_view();
  }
};

template <>
struct Build<grammar::StepParser> : actions::Makes<Build<grammar::StepParser>, StepParts> {
  template <typename Input>
  static void finish(const Input&, ParseContext& context, const StepParts& step, PathParts& path) {
    Draft* draft = context.drafts.addText(Draft::Kind::step, step.slice, step.predicate);
    draft->entry = static_cast<std::uint8_t>(step.axis);
    draft->detail = step.typeTest;
    path.steps.append(draft);
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
  static void finish(const Input&, ParseContext& context, const PathParts& parts, Slot& out) {
    out = context.drafts.addParts(Draft::Kind::path, parts.steps.first, nullptr);
    out->entry = static_cast<std::uint8_t>(parts.absolute);
  }
};

// The whole text

template <>
struct Build<grammar::TopLevelPath> : actions::Makes<Build<grammar::TopLevelPath>, Slot> {
  template <typename Input>
  static void finish(const Input& in, ParseContext&, Slot path, TopLevel& top) {
    top = {path, true, in.byte()};
  }
};

template <>
struct Build<grammar::TopLevelValue> : actions::Makes<Build<grammar::TopLevelValue>, Slot> {
  template <typename Input>
  static void finish(const Input& in, ParseContext&, Slot value, TopLevel& top) {
    if (top.expression == nullptr || in.byte() > top.end) top = {value, false, in.byte()};
  }
};

}  // namespace vell::outline_path
