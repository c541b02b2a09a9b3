#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

// The words of the language: axes, type tests, functions and attribute names that have a meaning of their
// own. Parser, printers, diagnostics and completion all read these tables.

namespace vell::outline_path {

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

enum class AttributeKind : std::uint8_t { id, type, text, other };

struct AxisWord {
  std::string_view spelling;
  std::string_view caseName;
};
inline constexpr std::array<AxisWord, 16> kAxes{{
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
inline constexpr std::array<std::string_view, 12> kTypeTests{
    "*",         "row",     "heading", "blockquote", "codeblock", "note",
    "unordered", "ordered", "task",    "hr",         "body",      "run",
};

/// The text that stands for `axis` in a path. The shortcut for the descendant axis has no spelling of its
/// own and borrows that of the verbose form.
constexpr std::string_view spelling(Axis axis) { return kAxes[static_cast<std::size_t>(axis)].spelling; }
/// The name of the case, as the tree text shows it ("descendantOrSelfShortcut").
constexpr std::string_view caseName(Axis axis) { return kAxes[static_cast<std::size_t>(axis)].caseName; }
constexpr std::string_view spelling(TypeTest test) { return kTypeTests[static_cast<std::size_t>(test)]; }

/// The verbose axes (those spelled `name::`), a name that is the beginning of another one after it.
std::span<const Axis> verboseAxes();
std::span<const TypeTest> typeTests();
std::span<const std::string_view> functionNames();

/// Whole-word look-ups; case matters.
std::optional<Axis> verboseAxisOf(std::string_view word);
std::optional<TypeTest> typeTestOf(std::string_view word);
FunctionKind functionKindOf(std::string_view name);
AttributeKind attributeKindOf(std::string_view name);

constexpr bool isSelf(Axis axis) { return axis == Axis::self || axis == Axis::selfShortcut; }
/// Whether `axis` selects at most one row from each row.
constexpr bool selectsOneRow(Axis axis) {
  constexpr auto bit = [](Axis one) { return 1U << static_cast<unsigned>(one); };
  constexpr unsigned single =
      bit(Axis::self) | bit(Axis::selfShortcut) | bit(Axis::parent) | bit(Axis::parentShortcut);
  return (bit(axis) & single) != 0;
}

}  // namespace vell::outline_path
