#pragma once

#include <string_view>

#include "outline_path/grammar.h"
#include "outline_path/trace.h"

// The label under which a rule is traced; rules without one are not. A rule that is a named parser is
// labelled by its name.

namespace vell::outline_path {

namespace trace_labels {

constexpr bool endsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

/// The name of a rule without its namespace, if it is that of a named parser.
template <typename Rule>
constexpr std::string_view parserName() {
  std::string_view name = tao::pegtl::demangle<Rule>();
  for (std::size_t i = name.size(); i > 0; --i) {
    if (name[i - 1] != ':') continue;
    name.remove_prefix(i);
    break;
  }
  return endsWith(name, "Parser") || name == "JSONString" || name == "UnescapedString" ||
                 name == "EscapedSingleChar" || name == "LiteralUnicodeCodePoint"
             ? name
             : std::string_view();
}

}  // namespace trace_labels

template <typename Rule>
inline constexpr std::string_view kTraceLabel = trace_labels::parserName<Rule>();

// clang-format off
template <> inline constexpr std::string_view kTraceLabel<grammar::StepSeparator>         = "keyword.step.separator";
template <> inline constexpr std::string_view kTraceLabel<grammar::AbsoluteMarker>        = "keyword.step.separator";
template <> inline constexpr std::string_view kTraceLabel<grammar::SliceBounds>           = "keyword.step.slice";
template <> inline constexpr std::string_view kTraceLabel<grammar::AnyTypeTest>           = "keyword.type-test";
template <> inline constexpr std::string_view kTraceLabel<grammar::NodeType>              = "keyword.node-type";
template <> inline constexpr std::string_view kTraceLabel<grammar::UnionKeyword>          = "keyword.op.set";
template <> inline constexpr std::string_view kTraceLabel<grammar::ExceptKeyword>         = "keyword.op.set";
template <> inline constexpr std::string_view kTraceLabel<grammar::IntersectKeyword>      = "keyword.op.set";
template <> inline constexpr std::string_view kTraceLabel<grammar::OrKeyword>             = "keyword.op.predicate";
template <> inline constexpr std::string_view kTraceLabel<grammar::AndKeyword>            = "keyword.op.predicate";
template <> inline constexpr std::string_view kTraceLabel<grammar::NotKeyword>            = "keyword.op.predicate";
template <> inline constexpr std::string_view kTraceLabel<grammar::RelationOpParser>      = "keyword.op.relation";
template <> inline constexpr std::string_view kTraceLabel<grammar::RelationModifierParser> = "keyword.relation.modifier";
template <> inline constexpr std::string_view kTraceLabel<grammar::AdditiveOpParser>      = "keyword.op.additive";
template <> inline constexpr std::string_view kTraceLabel<grammar::Times>                 = "keyword.op.multiplicative";
template <> inline constexpr std::string_view kTraceLabel<grammar::Over>                  = "keyword.op.multiplicative";
template <> inline constexpr std::string_view kTraceLabel<grammar::UnaryOpParser>         = "keyword.op.unary";
template <> inline constexpr std::string_view kTraceLabel<grammar::AttributeSigil>        = "keyword.attribute.op";
template <> inline constexpr std::string_view kTraceLabel<grammar::VariableSigil>         = "keyword.variable.op";
template <> inline constexpr std::string_view kTraceLabel<grammar::PathGroupOpen>         = "group.open.path";
template <> inline constexpr std::string_view kTraceLabel<grammar::PathGroupClose>        = "group.close.path";
template <> inline constexpr std::string_view kTraceLabel<grammar::PredicateGroupOpen>    = "group.open.predicate";
template <> inline constexpr std::string_view kTraceLabel<grammar::PredicateGroupClose>   = "group.close.predicate";
template <> inline constexpr std::string_view kTraceLabel<grammar::ValueGroupOpen>        = "group.open.value";
template <> inline constexpr std::string_view kTraceLabel<grammar::ValueGroupClose>       = "group.close.value";
template <> inline constexpr std::string_view kTraceLabel<grammar::FunctionOpen>          = "group.open.function";
template <> inline constexpr std::string_view kTraceLabel<grammar::FunctionClose>         = "group.close.function";
template <> inline constexpr std::string_view kTraceLabel<grammar::SliceOpen>             = "group.open.slice";
template <> inline constexpr std::string_view kTraceLabel<grammar::SliceClose>            = "group.close.slice";
template <> inline constexpr std::string_view kTraceLabel<grammar::ArgumentComma>         = "syntax.comma.function.arguments";
template <> inline constexpr std::string_view kTraceLabel<grammar::SliceColon>            = "syntax.colon.slice";
// Rules that stand for a named parser in one place
template <> inline constexpr std::string_view kTraceLabel<grammar::TopLevelPath>          = "PathExpressionParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::TopLevelValue>         = "ValueExpressionParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::StepPredicate>         = "PredicateExpressionParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::StepContainsText>      = "UnquotedParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::FirstStepAxis>         = "StepAxisParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::RelativeFirstStep>     = "StepParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::LeftValue>             = "ValueExpressionParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::RightValue>            = "ValueExpressionParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::AttributeName>         = "NameParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::VariableName>          = "NameParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::FunctionName>          = "NameParser";
// clang-format on

template <typename Rule>
inline constexpr TraceRule kTraceRule{kTraceLabel<Rule>,
                                      kTraceLabel<Rule>.find('.') != std::string_view::npos};

}  // namespace vell::outline_path
