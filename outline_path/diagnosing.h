#pragma once

#include "outline_path/expected_of.h"

namespace vell::outline_path {

/// Control of a parse that is made only to learn what was expected where it failed.
template <typename Rule>
struct Diagnosing : tao::pegtl::normal<Rule> {
  template <tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input>
  static bool match(Input& in, ParseContext& context) {
    const std::size_t at = in.byte();
    if constexpr (std::is_same_v<Rule, grammar::PredicateExpressionComparisonParser>)
      noteRelation(context, at);
    if (tao::pegtl::normal<Rule>::template match<A, M, Action, Control>(in, context)) return true;
    if constexpr (kExpectedOf<Rule>.has_value()) context.expectations->note(at, *kExpectedOf<Rule>);
    return false;
  }

 private:
  /// A comparison is not tried where no relation follows its first value; one could have stood there. A word
  /// is rather itself the mistake, and so is what is wrong in a string.
  static void noteRelation(ParseContext& context, std::size_t at) {
    const std::string_view text = context.text.substr(at);
    if (wordLength(text) != 0 && context.lookahead.functionNameLength(at) == 0) return;
    if (!text.empty() && text.front() == '"' && !isString(text)) return;
    const auto end = context.lookahead.missingRelation(at);
    if (end) context.expectations->note(*end, Expected::relation);
  }

  static bool isString(std::string_view text) {
    tao::pegtl::memory_input<tao::pegtl::tracking_mode::lazy, tao::pegtl::eol::lf, const char*> in(
        text.data(), text.size(), "");
    return tao::pegtl::parse<grammar::JSONString>(in);
  }
};

}  // namespace vell::outline_path
