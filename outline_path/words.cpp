#include "outline_path/words.h"

#include <algorithm>

namespace vell::outline_path {
namespace {

constexpr std::array kVerboseAxes{
    Axis::ancestorOrSelf,
    Axis::ancestor,
    Axis::descendantOrSelf,
    Axis::descendant,
    Axis::followingSibling,
    Axis::following,
    Axis::precedingSibling,
    Axis::preceding,
    Axis::parent,
    Axis::self,
    Axis::child,
    Axis::run,
};

constexpr std::array kTypeTestCases{
    TypeTest::any,  TypeTest::row,  TypeTest::heading,   TypeTest::quote,
    TypeTest::code, TypeTest::note, TypeTest::unordered, TypeTest::ordered,
    TypeTest::task, TypeTest::hr,   TypeTest::body,      TypeTest::run,
};

constexpr std::array<std::string_view, 21> kFunctions{
    "last",        "position",         "root",           "parent",        "level",        "leaf",
    "first-child", "last-child",       "nth-child",      "first-of-type", "last-of-type", "nth-of-type",
    "only-child",  "only-of-type",     "round",          "floor",         "ceil",         "boolean",
    "count",       "start-of-matches", "end-of-matches",
};

/// The index of `word` in `words`, or their number.
template <std::size_t count>
std::size_t indexOf(const std::array<std::string_view, count>& words, std::string_view word) {
  return static_cast<std::size_t>(std::find(words.begin(), words.end(), word) - words.begin());
}

}  // namespace

std::span<const Axis> verboseAxes() { return kVerboseAxes; }
std::span<const TypeTest> typeTests() { return kTypeTestCases; }
std::span<const std::string_view> functionNames() { return kFunctions; }

std::optional<TypeTest> typeTestOf(std::string_view word) {
  const std::size_t index = indexOf(kTypeTests, word);
  if (index == kTypeTests.size()) return std::nullopt;
  return static_cast<TypeTest>(index);
}

FunctionKind functionKindOf(std::string_view name) {
  return static_cast<FunctionKind>(indexOf(kFunctions, name));
}

AttributeKind attributeKindOf(std::string_view name) {
  if (name == "id") return AttributeKind::id;
  if (name == "type") return AttributeKind::type;
  if (name == "text") return AttributeKind::text;
  return AttributeKind::other;
}

}  // namespace vell::outline_path
