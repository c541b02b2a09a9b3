#pragma once

#include "outline_path/beginnings.h"
#include "outline_path/operator_levels.h"

namespace vell::outline_path {

/// Control of a parse that nobody watches: what the next character cannot begin is not tried, and levels of
/// operators are read in one loop.
template <typename Rule>
struct Unwatched : tao::pegtl::normal<Rule> {
  template <tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename... States>
  static bool match(Input& in, States&&... states) {
    if constexpr (kBeginnings<Rule>.has_value()) {
      if (in.empty() || !kBeginnings<Rule>->has(in.peek_char())) return false;
    }
    if constexpr (kApart<Rule>) return matchApart<A, M, Action, Control>(in, states...);
    return tao::pegtl::normal<Rule>::template match<A, M, Action, Control>(in, states...);
  }

  template <tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename... States>
  [[gnu::noinline]] static bool matchApart(Input& in, States&&... states) {
    return tao::pegtl::normal<Rule>::template match<A, M, Action, Control>(in, states...);
  }

  static constexpr bool kReadsLevels = true;
  template <tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input>
  static bool readLevels(Input& in, ParseContext& context, Draft*& out) {
    return OperatorLevels<Rule>::template match<M, Action, Control>(in, context, out);
  }
};

}  // namespace vell::outline_path
