#pragma once

#include <cstddef>

#include "outline_path/beginnings.h"
#include "outline_path/build.h"

namespace vell::outline_path {

/// Reads what may stand behind prefix operators together with all of these, in one loop: what the grammar
/// describes as a call for each. The drafts are the same.
template <typename Prefix, typename... Others>
class Prefixes {
 public:
  template <tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input>
  static bool match(Input& in, ParseContext& context, Slot& out) {
    auto mark = in.template mark<M>();
    const std::size_t depth = context.depth;
    if (mayBegin<Prefix>(in) && !matchSigns<Action, Control>(in, context)) {
      context.depth = depth;
      return mark(false);
    }
    const std::size_t count = context.depth - depth;
    const bool matched = tao::pegtl::internal::sor<Others...>::template match<
        tao::pegtl::apply_mode::action, decltype(mark)::next_rewind_mode, Action, Control>(in, context, out);
    if (count != 0) {
      context.depth -= count;
      if (matched) wrap<Action>(count, context, out);
    }
    return mark(matched);
  }

 private:
  /// Goes a level deeper for each sign; false where that is not allowed.
  template <template <typename...> class Action, template <typename...> class Control, typename Input>
  [[gnu::noinline]] static bool matchSigns(Input& in, ParseContext& context) {
    while (Control<typename Prefix::Sign>::template match<tao::pegtl::apply_mode::action,
                                                          tao::pegtl::rewind_mode::required, Action, Control>(
        in, context)) {
      if (!goDeeper(context, in.byte())) return false;
    }
    return true;
  }

  template <template <typename...> class Action>
  [[gnu::noinline]] static void wrap(std::size_t count, ParseContext& context, Slot& out) {
    for (; count != 0; --count) Action<Prefix>::apply0(context, out);
  }
};

}  // namespace vell::outline_path
