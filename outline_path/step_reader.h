#pragma once

#include "outline_path/build.h"

namespace vell::outline_path {

/// Reads the steps of a path in one loop: what the grammar describes once for each place where a step may
/// stand. The drafts are the same.
class StepReader {
 public:
  template <tao::pegtl::rewind_mode M, template <typename...> class Action,
            template <typename...> class Control, typename Input>
  static bool match(Input& in, ParseContext& context, Draft& path) {
    auto mark = in.template mark<M>();
    const bool absolute = matchRule<grammar::AbsoluteMarker, Action, Control>(in, context, path);
    for (bool isFirst = true;; isFirst = false) {
      auto behindLast = in.template mark<tao::pegtl::rewind_mode::required>();
      if (!isFirst && !matchRule<grammar::StepSeparator, Action, Control>(in, context, path)) break;
      Draft& step = *context.drafts.addEmpty(Draft::Kind::step, static_cast<std::uint8_t>(Axis::child));
      const bool needsAxis = isFirst && !absolute;
      const bool hasAxis = matchAxis<Action, Control>(needsAxis, in, context, step);
      if (needsAxis && !hasAxis) return mark(false);
      if (!matchFilter<Action, Control>(in, context, step) && !hasAxis) break;
      matchRule<grammar::SliceParser, Action, Control>(in, context, step);
      path.appendPart(&step, path.right);
      static_cast<void>(behindLast(true));
    }
    return mark(true);
  }

 private:
  template <typename Rule, template <typename...> class Action, template <typename...> class Control,
            typename Input>
  static bool matchRule(Input& in, ParseContext& context, Draft& draft) {
    return Control<Rule>::template match<tao::pegtl::apply_mode::action, tao::pegtl::rewind_mode::required,
                                         Action, Control>(in, context, draft);
  }

  template <template <typename...> class Action, template <typename...> class Control, typename Input>
  static bool matchAxis(bool named, Input& in, ParseContext& context, Draft& step) {
    return named ? matchRule<grammar::FirstStepAxis, Action, Control>(in, context, step)
                 : matchRule<grammar::StepAxisParser, Action, Control>(in, context, step);
  }

  template <template <typename...> class Action, template <typename...> class Control, typename Input>
  static bool matchFilter(Input& in, ParseContext& context, Draft& step) {
    const bool hasTypeTest = matchRule<grammar::TypeTestParser, Action, Control>(in, context, step);
    auto mark = in.template mark<tao::pegtl::rewind_mode::required>();
    if (hasTypeTest && !matchRule<grammar::Blanks, Action, Control>(in, context, step)) return true;
    if (matchRule<grammar::StepPredicate, Action, Control>(in, context, step)) return mark(true);
    return hasTypeTest || mark(matchRule<grammar::StepContainsText, Action, Control>(in, context, step));
  }
};

}  // namespace vell::outline_path
