#pragma once

#include "outline_path/grammar.h"

// Which rules are functions of their own: the fewer calls nest, and the less of the stack each takes, the
// less memory deep paths touch.

namespace vell::outline_path {

/// Whether a rule is a function of its own, so that what nests beside it takes less of the stack.
template <typename Rule>
inline constexpr bool kApart = false;

/// Whether a rule is read within the function of what it begins.
template <typename Rule>
inline constexpr bool kWithin = false;

/// Whether that ends with the rule, which is a function that others call too.
template <typename Rule>
inline constexpr bool kNests = false;

// clang-format off
template <> inline constexpr bool kApart<grammar::JSONString> = true;
template <> inline constexpr bool kApart<grammar::LiteralParser> = true;
template <> inline constexpr bool kApart<grammar::PredicateExpressionContainsTextParser> = true;
template <> inline constexpr bool kApart<grammar::NumberParser> = true;
template <> inline constexpr bool kApart<grammar::UnquotedParser> = true;
template <> inline constexpr bool kApart<grammar::StepContainsText> = true;
template <> inline constexpr bool kApart<grammar::SliceParser> = true;
template <> inline constexpr bool kApart<grammar::RelationModifierParser> = true;
template <> inline constexpr bool kApart<grammar::ComparedValues> = true;

template <> inline constexpr bool kWithin<grammar::LeftValue> = true;

template <> inline constexpr bool kNests<grammar::PathExpressionParser> = true;
template <> inline constexpr bool kNests<grammar::ValueExpressionParser> = true;
template <> inline constexpr bool kNests<grammar::ValueExpressionGroupParser> = true;
template <> inline constexpr bool kNests<grammar::Negation> = true;
// clang-format on

}  // namespace vell::outline_path
