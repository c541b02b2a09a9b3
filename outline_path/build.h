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

/// The rule fills a new draft of this kind and entry, which `Self::finish(draft, outer)` then gives to the
/// parent.
template <typename Self, Kind kind, auto entry = 0>
struct Drafted : pegtl::maybe_nothing {
  template <typename Rule, apply_mode A, rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename Outer>
  static bool match(Input& in, ParseContext& context, Outer& outer) {
    Draft* const draft = context.drafts.addEmpty(kind, static_cast<std::uint8_t>(entry));
    if (!pegtl::match<Rule, A, M, Action, Control>(in, context, *draft)) return false;
    if constexpr (A == apply_mode::action) Self::finish(draft, outer);
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

// Functions. The last argument is noted as the call's next draft until that is known.

template <>
struct Build<grammar::FunctionCallParser>
    : actions::Drafted<Build<grammar::FunctionCallParser>, Draft::Kind::call> {
  static void finish(Draft* call, Slot& out) { out = call; }
};

template <>
struct Build<grammar::FunctionName> {
  template <typename Input>
  static void apply(const Input& in, ParseContext&, Draft& call) {
    call.setText(in.string_view());
  }
};

template <>
struct Build<grammar::ArgumentParser> : actions::Makes<Build<grammar::ArgumentParser>, Slot> {
  template <typename Input>
  static void finish(const Input&, ParseContext&, Slot argument, Draft& call) {
    call.appendPart(argument, call.next);
  }
};

// Comparisons

template <>
struct Build<grammar::ComparedValues>
    : actions::Drafted<Build<grammar::ComparedValues>, Draft::Kind::comparison> {
  static void finish(Draft* comparison, Slot& out) { out = comparison; }
};

template <>
struct Build<grammar::LeftValue> : actions::Fills<Build<grammar::LeftValue>> {
  static Slot& part(Draft& comparison) { return comparison.left; }
};

template <>
struct Build<grammar::RelationOpParser> {
  static void apply0(ParseContext& context, Draft& comparison) { comparison.entry = context.entry; }
};

template <>
struct Build<grammar::RelationModifierType> {
  static void apply0(ParseContext& context, Draft& comparison) {
    comparison.detail = static_cast<std::uint8_t>(context.entry + 1);
  }
};

template <>
struct Build<grammar::LocaleAware> {
  static void apply0(ParseContext&, Draft& comparison) { comparison.localeAware = true; }
};

// Steps

template <>
struct Build<grammar::NamedAxis> {
  static void apply0(ParseContext& context, Draft& step) { step.entry = context.entry; }
};
template <>
struct Build<grammar::FirstStepAxis> : Build<grammar::NamedAxis> {};

template <>
struct Build<grammar::DescendantOrSelfAxis> {
  static void apply0(ParseContext&, Draft& step) {
    step.entry = static_cast<std::uint8_t>(Axis::descendantOrSelfShortcut);
  }
};

template <>
struct Build<grammar::AnyTypeTest> {
  static void apply0(ParseContext&, Draft& step) {
    step.detail = static_cast<std::uint8_t>(TypeTest::any) + 1;
  }
};

template <>
struct Build<grammar::NodeType> {
  static void apply0(ParseContext& context, Draft& step) {
    step.detail = static_cast<std::uint8_t>(context.entry + 1);
  }
};

template <>
struct Build<grammar::StepPredicate> : actions::Makes<Build<grammar::StepPredicate>, Slot> {
  template <typename Input>
  static void finish(const Input&, ParseContext&, Slot predicate, Draft& step) {
    step.left = predicate;
  }
};

template <>
struct Build<grammar::StepContainsText> {
  template <typename Input>
  static void apply(const Input& in, ParseContext& context, Draft& step) {
    step.left = context.drafts.addText(Draft::Kind::unquoted, in.string_view());
  }
};

template <>
struct Build<grammar::SliceParser> {
  template <typename Input>
  static void apply(const Input& in, ParseContext&, Draft& step) {
    step.setText(in.string_view());
  }
};

template <>
struct Build<grammar::StepParser>
    : actions::Drafted<Build<grammar::StepParser>, Draft::Kind::step, Axis::child> {
  static void finish(Draft* step, Draft& path) { path.appendPart(step, path.right); }
};
template <>
struct Build<grammar::RelativeFirstStep> : Build<grammar::StepParser> {};

// Paths. The last step is noted as the path's right part.

template <>
struct Build<grammar::AbsoluteMarker> {
  static void apply0(ParseContext&, Draft& path) { path.entry = 1; }
};

template <>
struct Build<grammar::PathParser> : actions::Drafted<Build<grammar::PathParser>, Draft::Kind::path> {
  static void finish(Draft* path, Slot& out) { out = path; }
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
