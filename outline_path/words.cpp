#include "outline_path/words.h"

#include <algorithm>

#include "outline_path/characters.h"

namespace vell::outline_path {
namespace {

constexpr std::array kNamedAxes{
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
    Axis::parentShortcut,
    Axis::selfShortcut,
};
constexpr std::size_t kVerboseAxes = kNamedAxes.size() - 2;

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

constexpr std::array<std::string_view, 11> kEditorFunctions{
    "focused-root",       "focused-branch",       "focused-level",         "expanded",
    "collapsed",          "filter-match",         "filter-match-ancestor", "selection",
    "selection-ancestor", "selection-descendant", "drop-indicator",
};

constexpr std::array<std::string_view, 3> kDateFunctions{"today", "now", "date"};
constexpr std::array<std::string_view, 2> kTimeAttributes{"created", "modified"};

constexpr std::array<std::string_view, 3> kAttributes{"id", "type", "text"};

constexpr auto kEveryRowsAttributes = [] {
  std::array<std::string_view, kAttributes.size() + kTimeAttributes.size()> all{};
  const auto end = std::copy(kAttributes.begin(), kAttributes.end(), all.begin());
  std::copy(kTimeAttributes.begin(), kTimeAttributes.end(), end);
  return all;
}();

constexpr auto kKeywords = [] {
  std::array<std::string_view, kSetOps.size() + kPredicateOps.size() + kRelationOps.size()> all{};
  auto end = std::copy(kSetOps.begin(), kSetOps.end(), all.begin());
  end = std::copy(kPredicateOps.begin(), kPredicateOps.end(), end);
  std::copy(kRelationOps.begin(), kRelationOps.end(), end);
  return all;
}();

template <typename Table, typename Word>
std::size_t indexIn(const Table& table, const Word& word) {
  return static_cast<std::size_t>(std::find(table.begin(), table.end(), word) - table.begin());
}

/// The entry of the table that is spelled `word`, if there is one.
template <typename Entry, typename Table, typename Word>
std::optional<Entry> entryOf(const Table& table, const Word& word) {
  const std::size_t index = indexIn(table, word);
  return index == table.size() ? std::nullopt : std::optional(static_cast<Entry>(index));
}

}  // namespace

std::span<const Axis> namedAxes() { return kNamedAxes; }
std::span<const Axis> verboseAxes() { return namedAxes().first(kVerboseAxes); }
std::span<const TypeTest> typeTests() { return kTypeTestCases; }
std::array<std::span<const std::string_view>, 3> functionNames() {
  return {kFunctions, kDateFunctions, kEditorFunctions};
}
std::span<const std::string_view> keywords() { return kKeywords; }

std::span<const std::string_view> everyRowsAttributeNames() { return kEveryRowsAttributes; }

std::optional<TypeTest> typeTestOf(std::string_view word) { return entryOf<TypeTest>(kTypeTests, word); }

std::optional<Axis> namedAxisOf(std::string_view word) {
  for (const Axis axis : kNamedAxes) {
    if (spelling(axis) == word) return axis;
  }
  return std::nullopt;
}

std::optional<RelationModifierType> relationModifierOf(char letter) {
  return entryOf<RelationModifierType>(kRelationModifiers, letter);
}

// The last kind, `other`, is the one of a word that is not in the table.
FunctionKind functionKindOf(std::string_view name) {
  return static_cast<FunctionKind>(indexIn(kFunctions, name));
}
std::optional<EditorFunction> editorFunctionOf(std::string_view name) {
  return entryOf<EditorFunction>(kEditorFunctions, name);
}
std::optional<DateFunction> dateFunctionOf(std::string_view name) {
  return entryOf<DateFunction>(kDateFunctions, name);
}
std::optional<TimeAttribute> timeAttributeOf(std::string_view name) {
  return entryOf<TimeAttribute>(kTimeAttributes, name);
}
AttributeKind attributeKindOf(std::string_view name) {
  return static_cast<AttributeKind>(indexIn(kAttributes, name));
}

std::optional<RelationOp> relationAt(std::string_view text) {
  if (text.empty()) return std::nullopt;
  const bool isLongSign = text.size() > 1 && text[1] == '=' && text.front() != '=';
  const std::size_t length = isLongSign ? 2 : std::max(wordLength(text), std::size_t{1});
  return entryOf<RelationOp>(kRelationOps, text.substr(0, length));
}

bool isKeyword(std::string_view word) { return indexIn(kKeywords, word) != kKeywords.size(); }
bool isConstant(std::string_view word) { return word == kTrue || word == kFalse || word == kNull; }

}  // namespace vell::outline_path
