#pragma once

#include <optional>

#include "outline_path/grammar.h"

// The characters that a rule can begin with, for rules that are often tried in vain.

namespace vell::outline_path {

template <typename Rule>
inline constexpr std::optional<Characters> kBeginnings = std::nullopt;

/// The characters that a tail may begin with behind its blanks.
template <typename Tail>
inline constexpr Characters kBehindBlanks;

// clang-format off
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::AttributeParser>            = Characters("@");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::VariableParser>             = Characters("$");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::LiteralParser>              = Characters("\"");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::NumberParser>               = Characters("0123456789");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::BooleanParser>              = Characters("tf");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::NullParser>                 = Characters("n");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::FunctionCallParser>         = kNameBeginnings;
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::ValueExpressionGroupParser> = Characters("(");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::Negation>                   = Characters("-");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::PathArgumentParser>         = Characters("(/.acdfprs");

template <> inline constexpr std::optional<Characters> kBeginnings<grammar::RelationModifierParser>                    = Characters("[");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::PredicateExpressionNotParser>              = Characters("n");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::PredicateExpressionGroupParser>            = Characters("(");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::PredicateExpressionContainsAttributeParser> = Characters("@");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::PredicateExpressionContainsTextParser>     = Characters("\"");

template <> inline constexpr std::optional<Characters> kBeginnings<grammar::NamedAxis>                 = Characters(".acdfprs");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::FirstStepAxis>             = Characters(".acdfprs");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::NodeType>                  = Characters("bchnortu");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::SliceParser>               = Characters("[");
template <> inline constexpr std::optional<Characters> kBeginnings<grammar::PathExpressionGroupParser> = Characters("(");

template <> inline constexpr Characters kBehindBlanks<grammar::MultiplicativeTail>      = Characters("*/");
template <> inline constexpr Characters kBehindBlanks<grammar::AdditiveTail>            = Characters("+-");
template <> inline constexpr Characters kBehindBlanks<grammar::RightMultiplicativeTail> = Characters("*");
template <> inline constexpr Characters kBehindBlanks<grammar::RightAdditiveTail>       = Characters("+-");
template <> inline constexpr Characters kBehindBlanks<grammar::AndTail>                 = Characters("a");
template <> inline constexpr Characters kBehindBlanks<grammar::OrTail>                  = Characters("o");
template <> inline constexpr Characters kBehindBlanks<grammar::IntersectTail>           = Characters("i");
template <> inline constexpr Characters kBehindBlanks<grammar::ExceptTail>              = Characters("e");
template <> inline constexpr Characters kBehindBlanks<grammar::UnionTail>               = Characters("u");
// clang-format on

/// Whether the next character is one that the rule can begin with.
template <typename Rule, typename Input>
bool mayBegin(const Input& in) {
  if constexpr (kBeginnings<Rule>.has_value()) {
    return !in.empty() && kBeginnings<Rule>->has(in.peek_char());
  } else {
    return true;
  }
}

}  // namespace vell::outline_path
