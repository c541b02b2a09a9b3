#pragma once

#include <cstddef>
#include <string_view>
#include <tao/pegtl.hpp>

#include "outline_path/characters.h"
#include "outline_path/parse_state.h"
#include "outline_path/tokens.h"

// What the grammar needs beyond the library's rules: tokens, a limit on depth, and decisions made by looking
// ahead.

namespace vell::outline_path::rules {

namespace pegtl = tao::pegtl;

#if TAO_PEGTL_VERSION_MAJOR >= 4
using Input = pegtl::view_input<>;
inline Input inputOf(std::string_view text) { return Input(text); }
inline void advance(Input& in, std::size_t length) { in.consume<void>(length); }
#else
using Input = pegtl::memory_input<pegtl::tracking_mode::lazy, pegtl::eol::lf, const char*>;
inline Input inputOf(std::string_view text) { return Input(text.data(), text.size(), ""); }
inline void advance(Input& in, std::size_t length) { in.bump(length); }
#endif

inline std::string_view rest(const Input& in) { return {in.current(), in.size()}; }
inline std::size_t offsetOf(const Input& in, const ParseState& state) {
  return static_cast<std::size_t>(in.current() - state.text.data());
}

/// A token: `length(text)` is how much of the text it takes.
template <auto length>
struct Token {
  using rule_t = Token;
  static bool match(Input& in) {
    const std::size_t taken = length(rest(in));
    advance(in, taken);
    return taken != 0;
  }
};

/// A whole run of word characters for which `accepts(word)` holds.
template <auto accepts>
struct WordThat {
  using rule_t = WordThat;
  static bool match(Input& in) {
    const std::string_view word = rest(in).substr(0, wordLength(rest(in)));
    if (word.empty() || !accepts(word)) return false;
    advance(in, word.size());
    return true;
  }
};

/// The spelling of an operator.
template <auto op>
struct Spelled {
  using rule_t = Spelled;
  static bool match(Input& in) {
    constexpr std::string_view text = spelling(op);
    if (rest(in).substr(0, text.size()) != text) return false;
    advance(in, text.size());
    return true;
  }
};

/// Takes nothing; matches where `holds` is true of the text that follows.
template <auto holds>
struct Before {
  using rule_t = Before;
  static bool match(Input& in) { return holds(rest(in)); }
};

/// Takes nothing; matches where a value may be the whole text.
struct ValueAllowed {
  using rule_t = ValueAllowed;
  template <pegtl::apply_mode, pegtl::rewind_mode, template <typename...> class, template <typename...> class,
            typename... States>
  static bool match(Input&, const ParseState& state, States&&...) {
    return state.allowValueExpression;
  }
};

/// The rules in sequence, one level deeper.
template <typename... Rules>
struct Deeper {
  using rule_t = Deeper;
  template <pegtl::apply_mode A, pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename... States>
  static bool match(Input& in, ParseState& state, States&&... states) {
    const Level level(state, offsetOf(in, state));
    return level.allowed() &&
           pegtl::seq<Rules...>::template match<A, M, Action, Control>(in, state, states...);
  }
};

/// The rules in sequence, the inside of a construct that alternatives share: where it failed it is not tried
/// again.
template <Construct construct, typename... Rules>
struct Once {
  using rule_t = Once;
  template <pegtl::apply_mode A, pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename... States>
  static bool match(Input& in, ParseState& state, States&&... states) {
    const std::size_t at = offsetOf(in, state);
    if (state.lookahead.failed(construct, at)) return false;
    if (pegtl::seq<Rules...>::template match<A, M, Action, Control>(in, state, states...)) return true;
    state.lookahead.noteFailure(construct, at);
    return false;
  }
};

/// The rules of a comparison, tried only where a relation follows the value.
template <typename... Rules>
struct WhereRelationFollows {
  using rule_t = WhereRelationFollows;
  template <pegtl::apply_mode A, pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename... States>
  static bool match(Input& in, ParseState& state, States&&... states) {
    const std::size_t at = offsetOf(in, state);
    if (!state.lookahead.relationFollows(at)) return false;
    if (pegtl::seq<Rules...>::template match<A, M, Action, Control>(in, state, states...)) return true;
    state.lookahead.noteFailedComparison(at);
    return false;
  }
};

}  // namespace vell::outline_path::rules
