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
    const auto run = [&] {
      return tao::pegtl::normal<Rule>::template match<A, M, Action, Control>(in, context, states...);
    };
    if constexpr (kTraceRule<Rule>.label.empty()) {
      return run();
    } else {
      auto* attempt = context.trace->enter(kTraceRule<Rule>, in.byte());
      const bool matched = run();
      context.trace->leave(attempt, matched ? in.byte() : TraceContext::kFailed);
      return matched;
    }
  }
};

}  // namespace vell::outline_path
