#include "outline_path/words.h"

#include <algorithm>

#include "outline_path/characters.h"

namespace vell::outline_path {
namespace {

constexpr std::array namedAxisList{
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
constexpr std::size_t verboseAxisCount = namedAxisList.size() - 2;

constexpr std::array allTypeTests{
    TypeTest::any,  TypeTest::row,  TypeTest::heading,   TypeTest::quote,
    TypeTest::code, TypeTest::note, TypeTest::unordered, TypeTest::ordered,
    TypeTest::task, TypeTest::hr,   TypeTest::body,      TypeTest::run,
};

constexpr std::array<std::string_view, 21> functions{
    "last",        "position",         "root",           "parent",        "level",        "leaf",
    "first-child", "last-child",       "nth-child",      "first-of-type", "last-of-type", "nth-of-type",
    "only-child",  "only-of-type",     "round",          "floor",         "ceil",         "boolean",
    "count",       "start-of-matches", "end-of-matches",
};

constexpr std::array<std::string_view, 11> editorFunctions{
    "focused-root",       "focused-branch",       "focused-level",         "expanded",
    "collapsed",          "filter-match",         "filter-match-ancestor", "selection",
    "selection-ancestor", "selection-descendant", "drop-indicator",
};

constexpr std::array<std::string_view, 3> dateFunctions{"today", "now", "date"};
constexpr std::array<std::string_view, 2> timeAttributes{"created", "modified"};

constexpr std::array<std::string_view, 3> attributes{"id", "type", "text"};

constexpr auto everyRowsAttributes = [] {
  std::array<std::string_view, attributes.size() + timeAttributes.size()> all{};
  const auto end = std::copy(attributes.begin(), attributes.end(), all.begin());
  std::copy(timeAttributes.begin(), timeAttributes.end(), end);
  return all;
}();

constexpr auto keywordList = [] {
  std::array<std::string_view, setOps.size() + predicateOps.size() + relationOps.size()> all{};
  auto end = std::copy(setOps.begin(), setOps.end(), all.begin());
  end = std::copy(predicateOps.begin(), predicateOps.end(), end);
  std::copy(relationOps.begin(), relationOps.end(), end);
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

std::span<const Axis> namedAxes() { return namedAxisList; }
std::span<const Axis> verboseAxes() { return namedAxes().first(verboseAxisCount); }
std::span<const TypeTest> typeTests() { return allTypeTests; }
std::array<std::span<const std::string_view>, 3> functionNames() {
  return {functions, dateFunctions, editorFunctions};
}
std::span<const std::string_view> keywords() { return keywordList; }

std::span<const std::string_view> everyRowsAttributeNames() { return everyRowsAttributes; }

std::optional<TypeTest> typeTestOf(std::string_view word) { return entryOf<TypeTest>(typeTestWords, word); }

std::optional<Axis> namedAxisOf(std::string_view word) {
  for (const Axis axis : namedAxisList) {
    if (spelling(axis) == word) return axis;
  }
  return std::nullopt;
}

std::optional<RelationModifierType> relationModifierOf(char letter) {
  return entryOf<RelationModifierType>(relationModifiers, letter);
}

// The last kind, `other`, is the one of a word that is not in the table.
FunctionKind functionKindOf(std::string_view name) {
  return static_cast<FunctionKind>(indexIn(functions, name));
}
std::optional<EditorFunction> editorFunctionOf(std::string_view name) {
  return entryOf<EditorFunction>(editorFunctions, name);
}
std::optional<DateFunction> dateFunctionOf(std::string_view name) {
  return entryOf<DateFunction>(dateFunctions, name);
}
std::optional<TimeAttribute> timeAttributeOf(std::string_view name) {
  return entryOf<TimeAttribute>(timeAttributes, name);
}
AttributeKind attributeKindOf(std::string_view name) {
  return static_cast<AttributeKind>(indexIn(attributes, name));
}

std::optional<RelationOp> relationAt(std::string_view text) {
  if (text.empty()) return std::nullopt;
  const bool isLongSign = text.size() > 1 && text[1] == '=' && text.front() != '=';
  const std::size_t length = isLongSign ? 2 : std::max(wordLength(text), std::size_t{1});
  return entryOf<RelationOp>(relationOps, text.substr(0, length));
}

bool isKeyword(std::string_view word) { return indexIn(keywordList, word) != keywordList.size(); }
bool isConstant(std::string_view word) { return word == trueWord || word == falseWord || word == nullWord; }

}  // namespace vell::outline_path
