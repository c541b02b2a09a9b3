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
inline constexpr std::optional<Expected> kExpectedOf = std::nullopt;

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
inline constexpr std::string_view kTraceLabel = rule_labels::parserName<Rule>();

// clang-format off

template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::PathOperand>                    = Expected::path;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::StepParser>                     = Expected::step;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::StepFilterParser>               = Expected::filter;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::ValueExpressionUnaryParser>     = Expected::value;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::PredicateExpressionTightParser> = Expected::predicate;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::AttributeName>                  = Expected::attributeName;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::VariableName>                   = Expected::variableName;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::SliceStart>                     = Expected::integer;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::SliceEnd>                       = Expected::integer;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::Divisor>                        = Expected::divisor;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::KeywordEnd>                     = Expected::blank;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::StringClose>                    = Expected::closingQuote;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::EscapeLetter>                   = Expected::escapeLetter;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::HexDigits>                      = Expected::hexDigits;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::NoLowSurrogate>                 = Expected::highSurrogate;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::LowSurrogateEscape>             = Expected::lowSurrogate;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::RelationModifierLetter>         = Expected::modifierLetter;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::LocaleAware>                    = Expected::localeAware;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::RelationModifierClose>          = Expected::modifierEnd;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::SliceColon>                     = Expected::sliceColon;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::SliceClose>                     = Expected::sliceEnd;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::ArgumentComma>                  = Expected::argumentEnd;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::ArgumentEnd>                    = Expected::argumentEnd;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::FunctionClose>                  = Expected::argumentEnd;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::ValueGroupClose>                = Expected::closingBracket;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::PredicateGroupClose>            = Expected::closingBracket;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::PathGroupClose>                 = Expected::closingBracket;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::AndKeyword>                     = Expected::predicateOp;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::OrKeyword>                      = Expected::predicateOp;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::StepSeparator>                  = Expected::separator;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::SliceOpen>                      = Expected::slice;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::UnionKeyword>                   = Expected::setOp;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::ExceptKeyword>                  = Expected::setOp;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::IntersectKeyword>               = Expected::setOp;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::AdditiveOpParser>               = Expected::arithmetic;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::Times>                          = Expected::arithmetic;
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::EndOfInput>                     = Expected::endOfInput;

template <> inline constexpr std::string_view kTraceLabel<grammar::StepSeparator>            = "keyword.step.separator";
template <> inline constexpr std::string_view kTraceLabel<grammar::AbsoluteMarker>           = "keyword.step.separator";
template <> inline constexpr std::string_view kTraceLabel<grammar::SliceBounds>              = "keyword.step.slice";
template <> inline constexpr std::string_view kTraceLabel<grammar::AnyTypeTest>              = "keyword.type-test";
template <> inline constexpr std::string_view kTraceLabel<grammar::NodeType>                 = "keyword.node-type";
template <> inline constexpr std::string_view kTraceLabel<grammar::UnionKeyword>             = "keyword.op.set";
template <> inline constexpr std::string_view kTraceLabel<grammar::ExceptKeyword>            = "keyword.op.set";
template <> inline constexpr std::string_view kTraceLabel<grammar::IntersectKeyword>         = "keyword.op.set";
template <> inline constexpr std::string_view kTraceLabel<grammar::OrKeyword>                = "keyword.op.predicate";
template <> inline constexpr std::string_view kTraceLabel<grammar::AndKeyword>               = "keyword.op.predicate";
template <> inline constexpr std::string_view kTraceLabel<grammar::NotKeyword>               = "keyword.op.predicate";
template <> inline constexpr std::string_view kTraceLabel<grammar::RelationSign>             = "keyword.op.relation";
template <> inline constexpr std::string_view kTraceLabel<grammar::RelationModifierSign>     = "keyword.relation.modifier";
template <> inline constexpr std::string_view kTraceLabel<grammar::Plus>                     = "keyword.op.additive";
template <> inline constexpr std::string_view kTraceLabel<grammar::Minus>                    = "keyword.op.additive";
template <> inline constexpr std::string_view kTraceLabel<grammar::Times>                    = "keyword.op.multiplicative";
template <> inline constexpr std::string_view kTraceLabel<grammar::Over>                     = "keyword.op.multiplicative";
template <> inline constexpr std::string_view kTraceLabel<grammar::MinusSign>                = "keyword.op.unary";
template <> inline constexpr std::string_view kTraceLabel<grammar::AttributeSigil>           = "keyword.attribute.op";
template <> inline constexpr std::string_view kTraceLabel<grammar::VariableSigil>            = "keyword.variable.op";
template <> inline constexpr std::string_view kTraceLabel<grammar::PathGroupOpen>            = "group.open.path";
template <> inline constexpr std::string_view kTraceLabel<grammar::PathGroupClose>           = "group.close.path";
template <> inline constexpr std::string_view kTraceLabel<grammar::PredicateGroupOpen>       = "group.open.predicate";
template <> inline constexpr std::string_view kTraceLabel<grammar::PredicateGroupClose>      = "group.close.predicate";
template <> inline constexpr std::string_view kTraceLabel<grammar::ValueGroupOpen>           = "group.open.value";
template <> inline constexpr std::string_view kTraceLabel<grammar::ValueGroupClose>          = "group.close.value";
template <> inline constexpr std::string_view kTraceLabel<grammar::FunctionOpen>             = "group.open.function";
template <> inline constexpr std::string_view kTraceLabel<grammar::FunctionClose>            = "group.close.function";
template <> inline constexpr std::string_view kTraceLabel<grammar::SliceOpen>                = "group.open.slice";
template <> inline constexpr std::string_view kTraceLabel<grammar::SliceClose>               = "group.close.slice";
template <> inline constexpr std::string_view kTraceLabel<grammar::ArgumentComma>            = "syntax.comma.function.arguments";
template <> inline constexpr std::string_view kTraceLabel<grammar::SliceColon>               = "syntax.colon.slice";
// Rules that stand for a named parser in one place
template <> inline constexpr std::string_view kTraceLabel<grammar::TopLevelPath>             = "PathExpressionParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::TopLevelValue>            = "ValueExpressionParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::StepPredicate>            = "PredicateExpressionParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::StepContainsText>         = "UnquotedParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::FirstStepAxis>            = "StepAxisParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::RelativeFirstStep>        = "StepParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::LeftValue>                = "ValueExpressionParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::RightValue>               = "ValueExpressionParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::AttributeName>            = "NameParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::VariableName>             = "NameParser";
template <> inline constexpr std::string_view kTraceLabel<grammar::FunctionName>             = "NameParser";

// clang-format on

template <typename Rule>
inline constexpr TraceRule kTraceRule{kTraceLabel<Rule>,
                                      kTraceLabel<Rule>.find('.') != std::string_view::npos};

}  // namespace vell::outline_path
