#include "outline_path/highlight.h"

#include <algorithm>
#include <array>
#include <optional>

#include "outline_path/characters.h"
#include "text/utf8.h"

namespace vell::outline_path {
namespace {

struct ClassOfLabel {
  std::string_view label;
  SyntaxClass syntaxClass;
};

constexpr std::array classes{
    ClassOfLabel{"keyword.step.separator", SyntaxClass::outlinePathStepSeparator},
    ClassOfLabel{"keyword.op.set", SyntaxClass::outlinePathRowSetOp},
    ClassOfLabel{"keyword.op.predicate", SyntaxClass::outlinePathPredicateOp},
    ClassOfLabel{"keyword.op.relation", SyntaxClass::outlinePathRelationOp},
    ClassOfLabel{"keyword.relation.modifier", SyntaxClass::outlinePathRelationOp},
    ClassOfLabel{"StepAxisParser", SyntaxClass::outlinePathStepAxis},
    ClassOfLabel{"UnquotedParser", SyntaxClass::outlinePathUnquoted},
    ClassOfLabel{"AttributeParser", SyntaxClass::outlinePathAttribute},
};

constexpr std::array<std::string_view, 8> names{
    "outlinePathRelationOp", "outlinePathPredicateOp", "outlinePathRowSetOp", "outlinePathError",
    "outlinePathAttribute",  "outlinePathUnquoted",    "outlinePathStepAxis", "outlinePathStepSeparator",
};

std::optional<SyntaxClass> classOf(std::string_view label) {
  const auto entry = std::find_if(classes.begin(), classes.end(),
                                  [&](const ClassOfLabel& candidate) { return candidate.label == label; });
  return entry == classes.end() ? std::nullopt : std::optional(entry->syntaxClass);
}

HighlightedRange errorRange(std::string_view text, std::size_t index) {
  const std::size_t length = index < text.size() ? text::firstCodePoint(text.substr(index)).length : 0;
  return {index, std::min(index + length, text.size()), SyntaxClass::outlinePathError};
}

}  // namespace

std::string_view nameOf(SyntaxClass syntaxClass) { return names[static_cast<std::size_t>(syntaxClass)]; }

std::vector<HighlightedRange> highlight(const OutlinePathWithParse& path) {
  std::vector<HighlightedRange> ranges;
  if (path.traceContext) {
    const auto& events = path.traceContext->events;
    const auto facts = factsOf(events);
    for (std::size_t i = 0; i < facts.size(); ++i) {
      const auto& event = events[i];
      const auto* match = std::get_if<TraceContext::Match>(&event.type);
      const auto syntaxClass = classOf(event.label);
      if (match == nullptr || facts[i].inFailedBranch || !syntaxClass) continue;
      ranges.push_back({event.index, match->end, *syntaxClass});
    }
  }
  if (path.errorIndex) ranges.push_back(errorRange(path.expression, path.errorIndex->index));
  // What leads to the error may have matched before, in a branch that was given up.
  std::sort(ranges.begin(), ranges.end());
  ranges.erase(std::unique(ranges.begin(), ranges.end()), ranges.end());
  return ranges;
}

}  // namespace vell::outline_path
