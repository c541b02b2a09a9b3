#pragma once

#include "outline_path/beginnings.h"
#include "outline_path/frames.h"
#include "outline_path/operator_levels.h"
#include "outline_path/prefixes.h"

namespace vell::outline_path {

template <typename Rule>
struct Unwatched;

/// `Unwatched` for what is read within the function of what it begins: instances of its own, which the
/// compiler inlines as nobody else calls them.
template <typename Rule>
struct Within : tao::pegtl::normal<Rule> {
  template <tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename... States>
  static bool match(Input& in, States&&... states) {
    if constexpr (kNests<Rule>) {
      return Unwatched<Rule>::template match<A, M, Action, Unwatched>(in, states...);
    } else {
      return Unwatched<Rule>::template match<A, M, Action, Within>(in, states...);
    }
  }

  static constexpr bool kReadsLevels = true;
  template <tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input>
  static bool readLevels(Input& in, ParseContext& context, Draft*& out) {
    return OperatorLevels<Rule>::template match<M, Action, Within, Unwatched>(in, context, out);
  }
};

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
    if constexpr (kApart<Rule>) {
      return matchApart<A, M, Action, Control>(in, states...);
    } else if constexpr (kWithin<Rule>) {
      return tao::pegtl::normal<Rule>::template match<A, M, Action, Within>(in, states...);
    } else {
      return tao::pegtl::normal<Rule>::template match<A, M, Action, Control>(in, states...);
    }
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
    return OperatorLevels<Rule>::template match<M, Action, Control, Unwatched>(in, context, out);
  }

  template <typename Prefix, typename... Others>
  using PrefixReader = Prefixes<Prefix, Others...>;
};

}  // namespace vell::outline_path
