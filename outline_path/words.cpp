#include "outline_path/words.h"

#include "outline_path/word_index.h"

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

/// The attributes with a meaning of their own, in the order of their kinds.
constexpr std::array<std::string_view, 3> kAttributes{"id", "type", "text"};

constexpr WordIndex kAttributeIndex(kAttributes);
constexpr WordIndex kTypeTestIndex(kTypeTests);
constexpr WordIndex kFunctionIndex(kFunctions);
constexpr WordIndex kAxisIndex([] {
  std::array<std::string_view, kVerboseAxes.size()> spellings;
  for (std::size_t i = 0; i < spellings.size(); ++i) spellings[i] = spelling(kVerboseAxes[i]);
  return spellings;
}());

}  // namespace

std::span<const Axis> verboseAxes() { return kVerboseAxes; }
std::span<const TypeTest> typeTests() { return kTypeTestCases; }
std::span<const std::string_view> functionNames() { return kFunctions; }

std::optional<TypeTest> typeTestOf(std::string_view word) {
  const std::size_t index = kTypeTestIndex.find(word);
  if (index == kTypeTests.size()) return std::nullopt;
  return static_cast<TypeTest>(index);
}

std::optional<Axis> verboseAxisOf(std::string_view word) {
  const std::size_t index = kAxisIndex.find(word);
  if (index == kVerboseAxes.size()) return std::nullopt;
  return kVerboseAxes[index];
}

FunctionKind functionKindOf(std::string_view name) {
  return static_cast<FunctionKind>(kFunctionIndex.find(name));
}

AttributeKind attributeKindOf(std::string_view name) {
  return static_cast<AttributeKind>(kAttributeIndex.find(name));
}

}  // namespace vell::outline_path
