#pragma once

#include "outline_path/grammar.h"

// Which rules are functions of their own. The less of the stack a level of nesting takes, the less memory
// deep paths touch; and a processor foresees where the innermost thirty or so calls return to: where each
// level is several calls, most returns of a deep path are mispredicted.

namespace vell::outline_path {

/// Whether a rule is a function of its own, so that what nests beside it takes less of the stack.
template <typename Rule>
inline constexpr bool kApart = false;

/// Whether a rule and what nests in it, down to the next such rule, are one function.
template <typename Rule>
inline constexpr bool kWhole = false;

// clang-format off
template <> inline constexpr bool kApart<grammar::JSONString> = true;
template <> inline constexpr bool kApart<grammar::LiteralParser> = true;
template <> inline constexpr bool kApart<grammar::PredicateExpressionContainsTextParser> = true;
template <> inline constexpr bool kApart<grammar::NumberParser> = true;
template <> inline constexpr bool kApart<grammar::UnquotedParser> = true;
template <> inline constexpr bool kApart<grammar::StepContainsText> = true;
template <> inline constexpr bool kApart<grammar::SliceParser> = true;
template <> inline constexpr bool kApart<grammar::RelationModifierParser> = true;
template <> inline constexpr bool kApart<grammar::PathExpressionGroupParser> = true;
template <> inline constexpr bool kApart<grammar::ValueExpressionParser> = true;
template <> inline constexpr bool kApart<grammar::ValueExpressionGroupParser> = true;
template <> inline constexpr bool kApart<grammar::Negation> = true;
template <> inline constexpr bool kApart<grammar::RightValue> = true;

template <> inline constexpr bool kWhole<grammar::ComparedValues> = true;
template <> inline constexpr bool kWhole<grammar::PredicateExpressionParser> = true;
// clang-format on

}  // namespace vell::outline_path
