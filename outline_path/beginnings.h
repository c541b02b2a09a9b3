#pragma once

#include <optional>

#include "outline_path/grammar.h"

// The characters that a rule can begin with, for rules that are often tried in vain.

namespace vell::outline_path {

template <typename Rule>
inline constexpr std::optional<Characters> kBeginnings = std::nullopt;

/// The characters that may follow the blanks that a rule begins with.
template <typename Rule>
inline constexpr std::optional<Characters> kBehindBlanks = std::nullopt;

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

template <> inline constexpr std::optional<Characters> kBehindBlanks<grammar::MultiplicativeTail>      = Characters("*/");
template <> inline constexpr std::optional<Characters> kBehindBlanks<grammar::AdditiveTail>            = Characters("+-");
template <> inline constexpr std::optional<Characters> kBehindBlanks<grammar::RightMultiplicativeTail> = Characters("*");
template <> inline constexpr std::optional<Characters> kBehindBlanks<grammar::RightAdditiveTail>       = Characters("+-");
template <> inline constexpr std::optional<Characters> kBehindBlanks<grammar::AndTail>                 = Characters("a");
template <> inline constexpr std::optional<Characters> kBehindBlanks<grammar::OrTail>                  = Characters("o");
template <> inline constexpr std::optional<Characters> kBehindBlanks<grammar::IntersectTail>           = Characters("i");
template <> inline constexpr std::optional<Characters> kBehindBlanks<grammar::ExceptTail>              = Characters("e");
template <> inline constexpr std::optional<Characters> kBehindBlanks<grammar::UnionTail>               = Characters("u");
// clang-format on

/// Control of a parse that nobody watches: what the next character cannot begin is not tried.
template <typename Rule>
struct Unwatched : tao::pegtl::normal<Rule> {
  template <tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename... States>
  static bool match(Input& in, States&&... states) {
    if constexpr (kBeginnings<Rule>.has_value()) {
      if (in.empty() || !kBeginnings<Rule>->has(in.peek_char())) return false;
    }
    if constexpr (kBehindBlanks<Rule>.has_value()) {
      const char* at = in.current();
      while (at != in.end() && isBlank(*at)) ++at;
      if (at == in.end() || !kBehindBlanks<Rule>->has(*at)) return false;
    }
    return tao::pegtl::normal<Rule>::template match<A, M, Action, Control>(in, states...);
  }
};

}  // namespace vell::outline_path
