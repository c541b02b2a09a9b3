#pragma once

#include <array>
#include <cstddef>

#include "outline_path/beginnings.h"
#include "outline_path/build.h"

namespace vell::outline_path {

/// Reads a level of binary operators and all that are tighter, in one loop: what the grammar describes as a
/// call for each level and, to its right, for each operand. The drafts are the same.
template <typename Operand, typename... Tails>
class OperatorLevels {
  static constexpr std::size_t kLevels = sizeof...(Tails);

 public:
  /// `First` is the control of the first operand, which most expressions consist of.
  template <tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class First, template <typename...> class Control, typename Input>
  static bool match(Input& in, ParseContext& context, Slot& out) {
    if (!matchOperand<M, Action, First>(in, context, out)) return false;
    if (levelAt(in) != kLevels) matchTails<Action, Control>(in, context, out);
    return true;
  }

 private:
  /// Where the innermost expression of a level begins that is still open to the right, and how deep that is.
  struct Start {
    Slot* expression;
    std::size_t depth;
  };

  template <tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input>
  static bool matchOperand(Input& in, ParseContext& context, Slot& out) {
    return Control<Operand>::template match<tao::pegtl::apply_mode::action, M, Action, Control>(in, context,
                                                                                                out);
  }

  // Most operands are followed by no operator: they are not to pay for what those need.
  template <template <typename...> class Action, template <typename...> class Control, typename Input>
  [[gnu::noinline]] static void matchTails(Input& in, ParseContext& context, Slot& out) {
    const std::size_t depth = context.depth;
    std::array<Start, kLevels> starts;
    starts.fill({&out, depth});
    while (matchTail<Action, Control>(in, context, starts)) {
    }
    context.depth = depth;
  }

  template <template <typename...> class Action, template <typename...> class Control, typename Input>
  static bool matchTail(Input& in, ParseContext& context, std::array<Start, kLevels>& starts) {
    constexpr std::array kinds{Action<Tails>::kKind...};
    auto mark = in.template mark<tao::pegtl::rewind_mode::required>();
    SignParts sign;
    const std::size_t level = levelAt(in);
    if (level == kLevels || !matchSign<Action, Control>(level, in, context, sign)) return false;
    const Start start = starts[level];
    context.depth = start.depth;
    if (!goDeeper(context, in.byte())) return false;
    Slot right = nullptr;
    if (!matchOperand<tao::pegtl::rewind_mode::dontcare, Action, Control>(in, context, right)) return false;
    Draft* const joined = context.drafts.addParts(kinds[level], *start.expression, right);
    joined->entry = sign.op;
    *start.expression = joined;
    for (std::size_t i = level; i < kLevels; ++i) starts[i] = {&joined->right, context.depth};
    return mark(true);
  }

  /// The level that the next operator is of by its first character, or their number.
  template <typename Input>
  static std::size_t levelAt(const Input& in) {
    const char* at = in.current();
    while (at != in.end() && isBlank(*at)) ++at;
    if (at == in.end()) return kLevels;
    std::size_t level = 0;
    static_cast<void>(((kBehindBlanks<Tails>.has(*at) || (++level, false)) || ...));
    return level;
  }

  template <template <typename...> class Action, template <typename...> class Control, typename Input>
  static bool matchSign(std::size_t level, Input& in, ParseContext& context, SignParts& sign) {
    return (
        (level-- == 0 &&
         Control<typename Tails::Sign>::template match<tao::pegtl::apply_mode::action,
                                                       tao::pegtl::rewind_mode::dontcare, Action, Control>(
             in, context, sign)) ||
        ...);
  }
};

template <typename Level, typename... Looser>
requires requires { typename Level::rule_t::Tail; }
class OperatorLevels<Level, Looser...>
    : public OperatorLevels<typename Level::Operand, Looser..., typename Level::Tail> {};

}  // namespace vell::outline_path
