#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

// The words and signs of the language, each kind in one table in the order of its enumeration: operators,
// axes, type tests, functions and the attributes with a meaning of their own. Parser, printers, diagnostics,
// completion and the fuzz dictionary read these tables.

namespace vell::outline_path {

enum class SetOp : std::uint8_t { unionOf, except, intersect };
enum class PredicateOp : std::uint8_t { orOf, andOf, notOf };
enum class AdditiveOp : std::uint8_t { add, subtract };
enum class MultiplicativeOp : std::uint8_t { multiply, divide };
enum class UnaryOp : std::uint8_t { negate };

enum class RelationOp : std::uint8_t {
  contains,
  beginsWith,
  endsWith,
  matches,
  equal,
  notEqual,
  lessThanOrEqual,
  greaterThanOrEqual,
  lessThan,
  greaterThan,
};

/// Those that look into texts, and those of an order.
constexpr bool isTextual(RelationOp op) { return op <= RelationOp::matches; }
constexpr bool isOrder(RelationOp op) { return op >= RelationOp::lessThanOrEqual; }

/// The letter after the relation, in square brackets.
enum class RelationModifierType : std::uint8_t {
  caseSensitive,
  caseInsensitive,
  numericCompare,
  dateCompare
};

inline constexpr std::array<std::string_view, 3> setOps{"union", "except", "intersect"};
inline constexpr std::array<std::string_view, 3> predicateOps{"or", "and", "not"};
inline constexpr std::array<std::string_view, 2> additiveOps{"+", "-"};
inline constexpr std::array<std::string_view, 2> multiplicativeOps{"*", "/"};
inline constexpr std::array<std::string_view, 1> unaryOps{"-"};
/// A longer spelling stands ahead of the one that begins it.
inline constexpr std::array<std::string_view, 10> relationOps{
    "contains", "beginswith", "endswith", "matches", "=", "!=", "<=", ">=", "<", ">"};
inline constexpr std::array<char, 4> relationModifiers{'s', 'i', 'n', 'd'};
inline constexpr char localeAwareLetter = 'l';

/// Constants win over unquoted words.
inline constexpr std::string_view trueWord = "true";
inline constexpr std::string_view falseWord = "false";
inline constexpr std::string_view nullWord = "null";

template <typename Op>
constexpr auto spelledIn(const auto& table, Op op) {
  return table[static_cast<std::size_t>(op)];
}
constexpr std::string_view spelling(SetOp op) { return spelledIn(setOps, op); }
constexpr std::string_view spelling(PredicateOp op) { return spelledIn(predicateOps, op); }
constexpr std::string_view spelling(AdditiveOp op) { return spelledIn(additiveOps, op); }
constexpr std::string_view spelling(MultiplicativeOp op) { return spelledIn(multiplicativeOps, op); }
constexpr std::string_view spelling(UnaryOp op) { return spelledIn(unaryOps, op); }
constexpr std::string_view spelling(RelationOp op) { return spelledIn(relationOps, op); }
constexpr char spelling(RelationModifierType type) { return spelledIn(relationModifiers, type); }

enum class Axis : std::uint8_t {
  parentShortcut,
  selfShortcut,
  descendantShortcut,
  descendantOrSelfShortcut,
  ancestor,
  ancestorOrSelf,
  parent,
  self,
  child,
  run,
  descendant,
  descendantOrSelf,
  following,
  preceding,
  followingSibling,
  precedingSibling,
};

enum class TypeTest : std::uint8_t {
  any,
  row,
  heading,
  quote,
  code,
  note,
  unordered,
  ordered,
  task,
  hr,
  body,
  run,
};

enum class FunctionKind : std::uint8_t {
  last,
  position,
  root,
  parent,
  level,
  leaf,
  firstChild,
  lastChild,
  nthChild,
  firstOfType,
  lastOfType,
  nthOfType,
  onlyChild,
  onlyOfType,
  round,
  floor,
  ceil,
  boolean,
  count,
  startOfMatches,
  endOfMatches,
  other,
};

/// Functions that ask for the state of an editor; `other` among the kinds.
enum class EditorFunction : std::uint8_t {
  focusedRoot,
  focusedBranch,
  focusedLevel,
  expanded,
  collapsed,
  filterMatch,
  filterMatchAncestor,
  selection,
  selectionAncestor,
  selectionDescendant,
  dropIndicator,
};

/// Functions that give dates; `other` among the kinds.
enum class DateFunction : std::uint8_t { today, now, date };

/// The times that every row has; `other` among the kinds of attributes.
enum class TimeAttribute : std::uint8_t { created, modified };

enum class AttributeKind : std::uint8_t { id, type, text, other };

struct AxisWord {
  std::string_view spelling;
  std::string_view caseName;
};
inline constexpr std::array<AxisWord, 16> axisWords{{
    {"..", "parentShortcut"},
    {".", "selfShortcut"},
    {"descendant::", "descendantShortcut"},
    {"/", "descendantOrSelfShortcut"},
    {"ancestor::", "ancestor"},
    {"ancestor-or-self::", "ancestorOrSelf"},
    {"parent::", "parent"},
    {"self::", "self"},
    {"child::", "child"},
    {"run::", "run"},
    {"descendant::", "descendant"},
    {"descendant-or-self::", "descendantOrSelf"},
    {"following::", "following"},
    {"preceding::", "preceding"},
    {"following-sibling::", "followingSibling"},
    {"preceding-sibling::", "precedingSibling"},
}};
inline constexpr std::array<std::string_view, 12> typeTestWords{
    "*",         "row",     "heading", "blockquote", "codeblock", "note",
    "unordered", "ordered", "task",    "hr",         "body",      "run",
};

/// The text that stands for `axis` in a path. The shortcut for the descendant axis has no spelling of its
/// own and borrows that of the verbose form.
constexpr std::string_view spelling(Axis axis) { return axisWords[static_cast<std::size_t>(axis)].spelling; }
/// The name of the case, as the tree text shows it ("descendantOrSelfShortcut").
constexpr std::string_view caseName(Axis axis) { return axisWords[static_cast<std::size_t>(axis)].caseName; }
constexpr std::string_view spelling(TypeTest test) { return typeTestWords[static_cast<std::size_t>(test)]; }

/// The axes that are spelled `name::`, ".." and ".", a spelling that is the beginning of another one after
/// it.
std::span<const Axis> namedAxes();
/// Those spelled `name::` alone.
std::span<const Axis> verboseAxes();
std::span<const TypeTest> typeTests();
/// The names of all functions: those with a kind of their own, those that give dates, those of an editor.
std::array<std::span<const std::string_view>, 3> functionNames();
/// The attributes that every row has, whatever its outline says.
std::span<const std::string_view> everyRowsAttributeNames();

/// Whole-word look-ups; case matters.
std::optional<Axis> namedAxisOf(std::string_view word);
std::optional<RelationModifierType> relationModifierOf(char letter);
std::optional<TypeTest> typeTestOf(std::string_view word);
FunctionKind functionKindOf(std::string_view name);
std::optional<EditorFunction> editorFunctionOf(std::string_view name);
std::optional<DateFunction> dateFunctionOf(std::string_view name);
std::optional<TimeAttribute> timeAttributeOf(std::string_view name);
AttributeKind attributeKindOf(std::string_view name);

constexpr bool isSelf(Axis axis) { return axis == Axis::self || axis == Axis::selfShortcut; }
/// Whether `axis` selects at most one row from each row.
constexpr bool selectsOneRow(Axis axis) {
  return isSelf(axis) || axis == Axis::parent || axis == Axis::parentShortcut;
}

/// The relation that `text` begins with; one that is a word ends at a word boundary.
std::optional<RelationOp> relationAt(std::string_view text);

/// Every word and sign that an operator is spelled with; no bare word may be one.
std::span<const std::string_view> keywords();
bool isKeyword(std::string_view word);
/// `true`, `false` or `null`.
bool isConstant(std::string_view word);

}  // namespace vell::outline_path
