#pragma once

#include <optional>

#include "outline_path/expectations.h"
#include "outline_path/grammar.h"

// What each rule wants to see where it fails at its very beginning. Rules without a row leave that to their
// parts or to the rule that they are part of.

namespace vell::outline_path {

template <typename Rule>
inline constexpr std::optional<Expected> kExpectedOf = std::nullopt;

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
template <> inline constexpr std::optional<Expected> kExpectedOf<grammar::RelationModifierType>           = Expected::modifierLetter;
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

// clang-format on

}  // namespace vell::outline_path
