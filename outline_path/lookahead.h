#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "outline_path/brackets.h"
#include "outline_path/characters.h"
#include "outline_path/operators.h"

namespace vell::outline_path {

/// The constructs that a parse may try twice at one place.
enum class Construct : std::uint8_t {
  pathGroup = 1,
  valueGroup = 2,
  predicateGroup = 4,
  functionCall = 8,
  comparison = 16,
};

/// What a parse knows about text it has not come to yet, and what it learned where it went wrong. Both keep
/// the work linear: brackets are paired once for the whole text, and what failed at a place fails at once
/// when it is tried there again.
class Lookahead {
 public:
  explicit Lookahead(std::string_view text) : text_(text), brackets_(text) {}

  bool failed(Construct construct, std::size_t at) const {
    return noted(static_cast<std::uint8_t>(construct), at);
  }
  void noteFailure(Construct construct, std::size_t at) { note(static_cast<std::uint8_t>(construct), at); }

  /// Whether a value begins at `at`, perhaps a chain of operands and arithmetic signs, that a relation
  /// follows.
  bool relationFollows(std::size_t at);
  /// Notes that the comparison at `at` failed though a relation follows, and so will those at the further
  /// operands of its chain, up to the one that was no value.
  void noteFailedComparison(std::size_t at);

  /// Where the relation behind the value at `at` would have to stand; nothing where there is no value, a
  /// relation follows it, or that was known to fail.
  std::optional<std::size_t> missingRelation(std::size_t at);

  /// Whether what stands at `at` may be divided by: a number, attribute, variable, function call, group or
  /// literal.
  bool isDivisor(std::size_t at) const;
  /// The length of the name at `at`, 0 where there is none.
  std::size_t nameLengthAt(std::size_t at) {
    if (lastName_ != at) {
      lastNameLength_ = nameLength(text_.substr(at));
      lastName_ = at;
    }
    return lastNameLength_;
  }
  /// The relation at `at`, as `relationAt` has it.
  std::optional<RelationOp> relation(std::size_t at) {
    if (lastRelation_ != at) {
      lastRelationOp_ = relationAt(text_.substr(at));
      lastRelation_ = at;
    }
    return lastRelationOp_;
  }
  /// The length of the function name at `at` with an opening bracket right behind it, else 0.
  std::size_t functionNameLength(std::size_t at) const;

 private:
  bool noted(std::uint8_t flag, std::size_t at) const { return !notes_.empty() && (notes_[at] & flag) != 0; }
  void note(std::uint8_t flag, std::size_t at);
  /// The same for a chain that goes on with the operand at `next`.
  bool relationFollowsChain(std::size_t first, std::size_t next);
  void noteChain(std::size_t at, std::uint8_t flag);
  bool operandFailed(std::size_t at) const;
  std::size_t operandEnd(std::size_t at);
  [[gnu::noinline]] std::size_t otherOperandEnd(std::size_t at);
  std::size_t wordOperandEnd(std::size_t at);
  std::size_t nextOperand(std::size_t sign) const;

  std::string_view text_;
  /// For each offset the constructs that failed there, and whether a relation is known to follow.
  std::vector<std::uint8_t> notes_;
  Brackets brackets_;
  /// What is looked ahead at is read soon after.
  std::size_t lastName_ = std::string_view::npos, lastNameLength_ = 0;
  std::size_t lastCall_ = std::string_view::npos, lastCallLength_ = 0;
  std::size_t lastRelation_ = std::string_view::npos;
  std::optional<RelationOp> lastRelationOp_;
};

/// The offset of the first character at or behind `at` that is no blank.
std::size_t skipBlanks(std::string_view text, std::size_t at);

}  // namespace vell::outline_path
