#pragma once

#include <cstring>
#include <string_view>
#include <tao/pegtl.hpp>
#include <tao/pegtl/contrib/uint8.hpp>

#include "outline_path/characters.h"
#include "outline_path/operators.h"
#include "outline_path/parse_context.h"
#include "outline_path/words.h"

// What the grammar needs beyond the library's rules: words looked up in the tables, limits, and decisions
// made by looking ahead.

namespace vell::outline_path::rules {

namespace pegtl = tao::pegtl;

template <typename Input>
std::string_view rest(const Input& in) {
  return {in.current(), in.size()};
}

template <typename Input>
bool take(Input& in, std::size_t length) {
  in.bump(length);
  return length != 0;
}

struct Name {
  using rule_t = Name;
  template <pegtl::apply_mode, pegtl::rewind_mode, template <typename...> class, template <typename...> class,
            typename Input, typename... States>
  static bool match(Input& in, ParseContext& context, States&&...) {
    return take(in, context.lookahead.nameLengthAt(in.byte()));
  }
};

/// A whole run of word characters for which `accepts(run, context)` holds.
template <auto accepts>
struct WordThat {
  using rule_t = WordThat;
  template <pegtl::apply_mode, pegtl::rewind_mode, template <typename...> class, template <typename...> class,
            typename Input, typename... States>
  static bool match(Input& in, ParseContext& context, States&&...) {
    const std::string_view text = rest(in);
    const std::size_t length = wordLength(text);
    return length != 0 && accepts(text.substr(0, length), context) && take(in, length);
  }
};

/// The spelling of an operator; `context.entry` is the operator then.
template <auto op>
struct Spelled {
  using rule_t = Spelled;
  template <typename Input>
  static bool match(Input& in) {
    constexpr auto spelled = spelling(op);
    if constexpr (std::is_same_v<decltype(spelled), const char>) {
      return !in.empty() && in.peek_char() == spelled && take(in, 1);
    } else {
      return in.size() >= spelled.size() && std::memcmp(in.current(), spelled.data(), spelled.size()) == 0 &&
             take(in, spelled.size());
    }
  }
};

/// The length of the table entry that `find(text, context)` finds at the beginning of the text.
template <auto find>
struct Entry {
  using rule_t = Entry;
  template <pegtl::apply_mode, pegtl::rewind_mode, template <typename...> class, template <typename...> class,
            typename Input, typename... States>
  static bool match(Input& in, ParseContext& context, States&&...) {
    return take(in, find(rest(in), context));
  }
};

/// Matches nothing; succeeds where `holds(context, offset)` does.
template <auto holds>
struct Where {
  using rule_t = Where;
  template <pegtl::apply_mode, pegtl::rewind_mode, template <typename...> class, template <typename...> class,
            typename Input, typename... States>
  static bool match(Input& in, ParseContext& context, States&&...) {
    return holds(context, in.byte());
  }
};

/// The rules in sequence, one level deeper.
template <typename... Rules>
struct Deeper {
  using rule_t = Deeper;
  template <pegtl::apply_mode A, pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename... States>
  static bool match(Input& in, ParseContext& context, States&&... states) {
    const Level level(context, in.byte());
    return level.allowed() &&
           pegtl::internal::seq<Rules...>::template match<A, M, Action, Control>(in, context, states...);
  }
};

/// An operator, which are the rules `Signs`, and what it joins to its operand, one level deeper.
template <typename Right, typename... Signs>
struct Tail : pegtl::seq<Signs..., Deeper<Right>> {
  using Sign = pegtl::seq<Signs...>;
};

/// A prefix operator, which are the rules `Signs`, and its operand, one level deeper.
template <typename Operand, typename... Signs>
struct Prefix : pegtl::seq<Signs..., Deeper<Operand>> {
  using Sign = pegtl::seq<Signs...>;
};

/// The operand of a prefix operator: one with such a prefix, or else one of `Others`. A control may read all
/// prefixes at once.
template <typename Prefix_, typename... Others>
struct Prefixed {
  using rule_t = Prefixed;
  template <pegtl::apply_mode A, pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename... States>
  static bool match(Input& in, ParseContext& context, States&&... states) {
    if constexpr (requires { Control<Prefixed>::kHasReaders; }) {
      return Control<Prefixed>::template PrefixReader<Prefix_, Others...>::template match<M, Action, Control>(
          in, context, states...);
    } else {
      return pegtl::internal::sor<Prefix_, Others...>::template match<A, M, Action, Control>(in, context,
                                                                                             states...);
    }
  }
};

/// A level of binary operators: an operand of the level below, then perhaps a tail. A control may read it,
/// and the levels below with it, in a way of its own.
template <typename Operand_, typename Tail_>
struct Binary {
  using rule_t = Binary;
  using Operand = Operand_;
  using Tail = Tail_;
  template <pegtl::apply_mode A, pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename... States>
  static bool match(Input& in, ParseContext& context, States&&... states) {
    if constexpr (requires { Control<Binary>::kHasReaders; }) {
      return Control<Binary>::template readLevels<M, Action, Control>(in, context, states...);
    } else {
      return pegtl::internal::seq<Operand, pegtl::opt<Tail>>::template match<A, M, Action, Control>(
          in, context, states...);
    }
  }
};

/// The steps of a path: the rules as alternatives. A control may read them in a way of its own.
template <typename... Rules>
struct StepsOf {
  using rule_t = StepsOf;
  template <pegtl::apply_mode A, pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename... States>
  static bool match(Input& in, ParseContext& context, States&&... states) {
    if constexpr (requires { Control<StepsOf>::kHasReaders; }) {
      return Control<StepsOf>::template readSteps<M, Action, Control>(in, context, states...);
    } else {
      return pegtl::internal::sor<Rules...>::template match<A, M, Action, Control>(in, context, states...);
    }
  }
};

/// `list<Item, Separator, Padding>`, but with a single call for all items, which can be inlined.
template <typename Item, typename Separator, typename Padding>
struct List {
  using rule_t = List;
  template <pegtl::apply_mode A, pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename... States>
  static bool match(Input& in, ParseContext& context, States&&... states) {
    using Between = pegtl::internal::seq<pegtl::star<Padding>, Separator, pegtl::star<Padding>>;
    for (bool isFirst = true;; isFirst = false) {
      auto mark = in.template mark<pegtl::rewind_mode::required>();
      if (!isFirst &&
          !Between::template match<A, pegtl::rewind_mode::dontcare, Action, Control>(in, context, states...))
        return true;
      if (!Control<Item>::template match<A, pegtl::rewind_mode::dontcare, Action, Control>(in, context,
                                                                                           states...))
        return !isFirst;
      static_cast<void>(mark(true));
    }
  }
};

/// A construct that alternatives share: where it failed behind its opening it is not tried again.
template <Construct construct, typename Opening, typename... Rules>
struct Once {
  using rule_t = Once;
  template <pegtl::apply_mode A, pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename... States>
  static bool match(Input& in, ParseContext& context, States&&... states) {
    const std::size_t at = in.byte();
    if (context.lookahead.failed(construct, at)) return false;
    auto mark = in.template mark<M>();
    constexpr auto inner = decltype(mark)::next_rewind_mode;
    if (!Control<Opening>::template match<A, inner, Action, Control>(in, context, states...)) return false;
    if (pegtl::internal::seq<Rules...>::template match<A, inner, Action, Control>(in, context, states...))
      return mark(true);
    context.lookahead.noteFailure(construct, at);
    return mark(false);
  }
};

/// The rules of a comparison, tried only where a relation follows the value.
template <typename... Rules>
struct WhereRelationFollows {
  using rule_t = WhereRelationFollows;
  template <pegtl::apply_mode A, pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename... States>
  static bool match(Input& in, ParseContext& context, States&&... states) {
    const std::size_t at = in.byte();
    if (!context.lookahead.relationFollows(at)) return false;
    if (pegtl::internal::seq<Rules...>::template match<A, M, Action, Control>(in, context, states...))
      return true;
    context.lookahead.noteFailedComparison(at);
    return false;
  }
};

}  // namespace vell::outline_path::rules
