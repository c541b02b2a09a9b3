#pragma once

#include "outline_path/trace.h"
#include "outline_path/trace_labels.h"

namespace vell::outline_path {

/// Control of a parse that writes down what its labelled rules do.
template <typename Rule>
struct Tracing : tao::pegtl::normal<Rule> {
  template <tao::pegtl::apply_mode A, tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input, typename... States>
  static bool match(Input& in, ParseContext& context, States&&... states) {
    constexpr std::string_view label = kTraceLabel<Rule>;
    const auto run = [&] {
      return tao::pegtl::normal<Rule>::template match<A, M, Action, Control>(in, context, states...);
    };
    if constexpr (label.empty()) {
      return run();
    } else {
      const std::size_t at = in.byte();
      context.trace->enter(label, kTraceHighlight<Rule>, at);
      const bool matched = run();
      if (matched) {
        context.trace->match(label, kTraceHighlight<Rule>, at, in.byte());
      } else {
        context.trace->fail(label, kTraceHighlight<Rule>, at);
      }
      return matched;
    }
  }
};

}  // namespace vell::outline_path
