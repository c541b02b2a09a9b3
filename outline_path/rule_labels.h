#pragma once

#include <optional>
#include <string_view>

#include "outline_path/diagnostic.h"
#include "outline_path/grammar.h"
#include "outline_path/trace.h"

// What is told of each rule: what it expects where it fails at its very beginning, and the label under which
// it is traced.

namespace vell::outline_path {

/// Rules without a row leave it to their parts, or to the rule that they are part of.
template <typename Rule>
inline constexpr std::optional<Expected> expectedOf = std::nullopt;

namespace rule_labels {

/// The name of a rule without its namespace, if it is that of a named parser.
template <typename Rule>
constexpr std::string_view parserName() {
  std::string_view name = tao::pegtl::demangle<Rule>();
  name.remove_prefix(name.rfind(':') + 1);
  const bool isParser = name.ends_with("Parser") || name == "JSONString" || name == "UnescapedString" ||
                        name == "EscapedSingleChar" || name == "LiteralUnicodeCodePoint";
  return isParser ? name : std::string_view();
}

}  // namespace rule_labels

/// Rules that are neither a named parser nor have a row are not traced.
template <typename Rule>
inline constexpr std::string_view traceLabel = rule_labels::parserName<Rule>();

// clang-format off

template <> inline constexpr std::optional<Expected> expectedOf<grammar::PathOperand>                    = Expected::path;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::StepParser>                     = Expected::step;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::StepFilterParser>               = Expected::filter;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::ValueExpressionUnaryParser>     = Expected::value;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::PredicateExpressionTightParser> = Expected::predicate;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::AttributeName>                  = Expected::attributeName;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::VariableName>                   = Expected::variableName;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::SliceStart>                     = Expected::integer;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::SliceEnd>                       = Expected::integer;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::Divisor>                        = Expected::divisor;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::KeywordEnd>                     = Expected::blank;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::StringClose>                    = Expected::closingQuote;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::EscapeLetter>                   = Expected::escapeLetter;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::HexDigits>                      = Expected::hexDigits;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::NoLowSurrogate>                 = Expected::highSurrogate;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::LowSurrogateEscape>             = Expected::lowSurrogate;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::RelationModifierLetter>         = Expected::modifierLetter;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::LocaleAware>                    = Expected::localeAware;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::RelationModifierClose>          = Expected::modifierEnd;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::SliceColon>                     = Expected::sliceColon;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::SliceClose>                     = Expected::sliceEnd;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::ArgumentComma>                  = Expected::argumentEnd;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::ArgumentEnd>                    = Expected::argumentEnd;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::FunctionClose>                  = Expected::argumentEnd;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::ValueGroupClose>                = Expected::closingBracket;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::PredicateGroupClose>            = Expected::closingBracket;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::PathGroupClose>                 = Expected::closingBracket;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::AndKeyword>                     = Expected::predicateOp;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::OrKeyword>                      = Expected::predicateOp;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::StepSeparator>                  = Expected::separator;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::SliceOpen>                      = Expected::slice;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::UnionKeyword>                   = Expected::setOp;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::ExceptKeyword>                  = Expected::setOp;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::IntersectKeyword>               = Expected::setOp;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::AdditiveOpParser>               = Expected::arithmetic;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::Times>                          = Expected::arithmetic;
template <> inline constexpr std::optional<Expected> expectedOf<grammar::EndOfInput>                     = Expected::endOfInput;

template <> inline constexpr std::string_view traceLabel<grammar::StepSeparator>            = "keyword.step.separator";
template <> inline constexpr std::string_view traceLabel<grammar::AbsoluteMarker>           = "keyword.step.separator";
template <> inline constexpr std::string_view traceLabel<grammar::SliceBounds>              = "keyword.step.slice";
template <> inline constexpr std::string_view traceLabel<grammar::AnyTypeTest>              = "keyword.type-test";
template <> inline constexpr std::string_view traceLabel<grammar::NodeType>                 = "keyword.node-type";
template <> inline constexpr std::string_view traceLabel<grammar::UnionKeyword>             = "keyword.op.set";
template <> inline constexpr std::string_view traceLabel<grammar::ExceptKeyword>            = "keyword.op.set";
template <> inline constexpr std::string_view traceLabel<grammar::IntersectKeyword>         = "keyword.op.set";
template <> inline constexpr std::string_view traceLabel<grammar::OrKeyword>                = "keyword.op.predicate";
template <> inline constexpr std::string_view traceLabel<grammar::AndKeyword>               = "keyword.op.predicate";
template <> inline constexpr std::string_view traceLabel<grammar::NotKeyword>               = "keyword.op.predicate";
template <> inline constexpr std::string_view traceLabel<grammar::RelationSign>             = "keyword.op.relation";
template <> inline constexpr std::string_view traceLabel<grammar::RelationModifierSign>     = "keyword.relation.modifier";
template <> inline constexpr std::string_view traceLabel<grammar::Plus>                     = "keyword.op.additive";
template <> inline constexpr std::string_view traceLabel<grammar::Minus>                    = "keyword.op.additive";
template <> inline constexpr std::string_view traceLabel<grammar::Times>                    = "keyword.op.multiplicative";
template <> inline constexpr std::string_view traceLabel<grammar::Over>                     = "keyword.op.multiplicative";
template <> inline constexpr std::string_view traceLabel<grammar::MinusSign>                = "keyword.op.unary";
template <> inline constexpr std::string_view traceLabel<grammar::AttributeSigil>           = "keyword.attribute.op";
template <> inline constexpr std::string_view traceLabel<grammar::VariableSigil>            = "keyword.variable.op";
template <> inline constexpr std::string_view traceLabel<grammar::PathGroupOpen>            = "group.open.path";
template <> inline constexpr std::string_view traceLabel<grammar::PathGroupClose>           = "group.close.path";
template <> inline constexpr std::string_view traceLabel<grammar::PredicateGroupOpen>       = "group.open.predicate";
template <> inline constexpr std::string_view traceLabel<grammar::PredicateGroupClose>      = "group.close.predicate";
template <> inline constexpr std::string_view traceLabel<grammar::ValueGroupOpen>           = "group.open.value";
template <> inline constexpr std::string_view traceLabel<grammar::ValueGroupClose>          = "group.close.value";
template <> inline constexpr std::string_view traceLabel<grammar::FunctionOpen>             = "group.open.function";
template <> inline constexpr std::string_view traceLabel<grammar::FunctionClose>            = "group.close.function";
template <> inline constexpr std::string_view traceLabel<grammar::SliceOpen>                = "group.open.slice";
template <> inline constexpr std::string_view traceLabel<grammar::SliceClose>               = "group.close.slice";
template <> inline constexpr std::string_view traceLabel<grammar::ArgumentComma>            = "syntax.comma.function.arguments";
template <> inline constexpr std::string_view traceLabel<grammar::SliceColon>               = "syntax.colon.slice";
// Rules that stand for a named parser in one place
template <> inline constexpr std::string_view traceLabel<grammar::TopLevelPath>             = "PathExpressionParser";
template <> inline constexpr std::string_view traceLabel<grammar::TopLevelValue>            = "ValueExpressionParser";
template <> inline constexpr std::string_view traceLabel<grammar::StepPredicate>            = "PredicateExpressionParser";
template <> inline constexpr std::string_view traceLabel<grammar::StepContainsText>         = "UnquotedParser";
template <> inline constexpr std::string_view traceLabel<grammar::FirstStepAxis>            = "StepAxisParser";
template <> inline constexpr std::string_view traceLabel<grammar::RelativeFirstStep>        = "StepParser";
template <> inline constexpr std::string_view traceLabel<grammar::LeftValue>                = "ValueExpressionParser";
template <> inline constexpr std::string_view traceLabel<grammar::RightValue>               = "ValueExpressionParser";
template <> inline constexpr std::string_view traceLabel<grammar::AttributeName>            = "NameParser";
template <> inline constexpr std::string_view traceLabel<grammar::VariableName>             = "NameParser";
template <> inline constexpr std::string_view traceLabel<grammar::FunctionName>             = "NameParser";

// clang-format on

template <typename Rule>
inline constexpr TraceRule traceRule{traceLabel<Rule>, traceLabel<Rule>.find('.') != std::string_view::npos};

}  // namespace vell::outline_path
