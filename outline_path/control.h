#pragma once

#include "outline_path/rule_labels.h"

namespace vell::outline_path {

/// The parser control of every parse: gathers what was expected where rules fail and, if the parse is traced,
/// writes down what they do.
template <typename Rule>
struct Control : tao::pegtl::normal<Rule> {
  template <tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Self, typename... States>
  static bool match(rules::Input& in, ParseState& state, States&&... states) {
    ++state.steps;
    const std::size_t at = rules::offsetOf(in, state);
    if constexpr (isTraced) enter(state, at);
    const bool matched = tao::pegtl::normal<Rule>::template match<A, M, Action, Self>(in, state, states...);
    if (!matched) noteExpected(state, at);
    if constexpr (isTraced)
      leave(state, at, matched ? std::optional(rules::offsetOf(in, state)) : std::nullopt);
    return matched;
  }

 private:
  static constexpr bool isTraced = !traceLabel<Rule>.empty();

  static void enter(ParseState& state, std::size_t at) {
    if (state.trace != nullptr) state.trace->enter(traceRule<Rule>, at);
  }

  static void leave(ParseState& state, std::size_t at, std::optional<std::size_t> end) {
    if (state.trace == nullptr) return;
    const Expectations& failure = state.expectations;
    TraceContext::EventType type =
        TraceContext::Error{{Diagnostic::Kind::unexpected, failure.furthest(), failure.all()}};
    if (end) type = TraceContext::Match{*end, std::string_view(state.trace->input).substr(at, *end - at)};
    state.trace->leave(traceRule<Rule>, at, type);
  }

  static void noteExpected(ParseState& state, std::size_t at) {
    if constexpr (expectedOf<Rule>.has_value()) state.expectations.note(at, *expectedOf<Rule>);
    if constexpr (std::is_same_v<Rule, grammar::PredicateExpressionComparisonParser>) noteRelation(state, at);
  }

  /// A comparison is not tried where no relation follows its first value; one could have stood there. A word
  /// is rather itself the mistake, and so is what is wrong in a string.
  static void noteRelation(ParseState& state, std::size_t at) {
    const auto missing = state.lookahead.missingRelation();
    const std::string_view text = state.text.substr(at);
    const bool isWord = wordLength(text) != 0 && functionNameLength(text) == 0;
    if (missing && !isWord && !(text.starts_with('"') && !isString(text)))
      state.expectations.note(*missing, Expected::relation);
  }

  static bool isString(std::string_view text) {
    rules::Input in = rules::inputOf(text);
    return tao::pegtl::parse<grammar::JSONString>(in);
  }
};

}  // namespace vell::outline_path
