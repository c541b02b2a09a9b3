#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

// The operators of the language. Parser, printers, diagnostics, completion and the fuzz dictionary all
// read the one table behind these functions.

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

/// The letter after the relation, in square brackets.
enum class RelationModifierType : std::uint8_t {
  caseSensitive,
  caseInsensitive,
  numericCompare,
  dateCompare
};

inline constexpr std::array<std::string_view, 3> kSetOps{"union", "except", "intersect"};
inline constexpr std::array<std::string_view, 3> kPredicateOps{"or", "and", "not"};
inline constexpr std::array<char, 2> kAdditiveOps{'+', '-'};
inline constexpr std::array<char, 2> kMultiplicativeOps{'*', '/'};
inline constexpr std::array<char, 1> kUnaryOps{'-'};
/// A longer spelling stands ahead of the one that begins it.
inline constexpr std::array<std::string_view, 10> kRelationOps{
    "contains", "beginswith", "endswith", "matches", "=", "!=", "<=", ">=", "<", ">"};
inline constexpr std::array<char, 4> kRelationModifiers{'s', 'i', 'n', 'd'};
inline constexpr char kLocaleAware = 'l';

/// Constants win over unquoted words.
inline constexpr std::string_view kTrue = "true";
inline constexpr std::string_view kFalse = "false";
inline constexpr std::string_view kNull = "null";

template <typename Op>
constexpr auto spelledIn(const auto& table, Op op) {
  return table[static_cast<std::size_t>(op)];
}
constexpr std::string_view spelling(SetOp op) { return spelledIn(kSetOps, op); }
constexpr std::string_view spelling(PredicateOp op) { return spelledIn(kPredicateOps, op); }
constexpr char spelling(AdditiveOp op) { return spelledIn(kAdditiveOps, op); }
constexpr char spelling(MultiplicativeOp op) { return spelledIn(kMultiplicativeOps, op); }
constexpr char spelling(UnaryOp op) { return spelledIn(kUnaryOps, op); }
constexpr std::string_view spelling(RelationOp op) { return spelledIn(kRelationOps, op); }
constexpr char spelling(RelationModifierType type) { return spelledIn(kRelationModifiers, type); }

/// The relation that `text` begins with; one that is a word ends at a word boundary.
std::optional<RelationOp> relationAt(std::string_view text);

/// Every word and sign that an operator is spelled with and that no bare word may be.
std::span<const std::string_view> keywords();
bool isKeyword(std::string_view word);
/// `true`, `false` or `null`.
bool isConstant(std::string_view word);

}  // namespace vell::outline_path
