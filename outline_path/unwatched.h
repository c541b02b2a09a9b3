#pragma once

#include <type_traits>

#include "outline_path/beginnings.h"
#include "outline_path/frames.h"
#include "outline_path/operator_levels.h"
#include "outline_path/prefixes.h"
#include "outline_path/step_reader.h"

namespace vell::outline_path {

template <typename Rule>
struct Within;

/// Control of a parse that nobody watches: what the next character cannot begin is not tried, and levels of
/// operators, prefixes and steps are each read in one loop.
template <typename Rule>
struct Unwatched : tao::pegtl::normal<Rule> {
  template <tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename... States>
  static bool match(Input& in, States&&... states) {
    if (!mayBegin<Rule>(in)) return false;
    if constexpr (kApart<Rule>) {
      return matchApart<A, M, Action>(in, states...);
    } else if constexpr (kWhole<Rule>) {
      return matchWhole<A, M, Action>(in, states...);
    } else {
      return tao::pegtl::normal<Rule>::template match<A, M, Action, Control>(in, states...);
    }
  }

  static constexpr bool kHasReaders = true;
  template <tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input>
  static bool readLevels(Input& in, ParseContext& context, Draft*& out) {
    return OperatorLevels<Rule>::template match<M, Action, Control, Unwatched>(in, context, out);
  }

  template <typename Prefix, typename... Others>
  using PrefixReader = Prefixes<Prefix, Others...>;

  template <tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input>
  static bool readSteps(Input& in, ParseContext& context, Draft& path) {
    return StepReader::match<M, Action, Control>(in, context, path);
  }

 private:
  template <tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M, template <typename...> class Action,
            typename Input, typename... States>
  [[gnu::noinline]] static bool matchApart(Input& in, States&&... states) {
    return tao::pegtl::normal<Rule>::template match<A, M, Action, Unwatched>(in, states...);
  }

  template <tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M, template <typename...> class Action,
            typename Input, typename... States>
  [[gnu::noinline, gnu::flatten]] static bool matchWhole(Input& in, States&&... states) {
    return tao::pegtl::normal<Rule>::template match<A, M, Action, Within>(in, states...);
  }
};

/// `Unwatched` for what is read within another rule's function: instances of its own, which the compiler
/// inlines as nobody else calls them. This one is for a step's predicate.
template <typename Rule>
struct WithinStep : Unwatched<Rule> {
  template <tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename... States>
  static bool match(Input& in, States&&... states) {
    if constexpr (kApart<Rule> || kWhole<Rule>) {
      return Unwatched<Rule>::template match<A, M, Action, Unwatched>(in, states...);
    } else {
      return mayBegin<Rule>(in) &&
             tao::pegtl::normal<Rule>::template match<A, M, Action, Control>(in, states...);
    }
  }
};

/// The same from the beginning of that function to the predicates of its steps; there comparisons are read
/// within, too.
template <typename Rule>
struct Within : Unwatched<Rule> {
  template <tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename... States>
  static bool match(Input& in, States&&... states) {
    if constexpr (std::is_same_v<Rule, grammar::ComparedValues>) {
      return tao::pegtl::normal<Rule>::template match<A, M, Action, Within>(in, states...);
    } else if constexpr (std::is_same_v<Rule, grammar::StepPredicate>) {
      return tao::pegtl::normal<Rule>::template match<A, M, Action, WithinStep>(in, states...);
    } else {
      return WithinStep<Rule>::template match<A, M, Action, Within>(in, states...);
    }
  }
};

}  // namespace vell::outline_path
