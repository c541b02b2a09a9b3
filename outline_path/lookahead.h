#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace vell::outline_path {

/// The constructs in brackets that a parse may try twice at one place.
enum class Construct : std::uint8_t { pathGroup = 1, valueGroup = 2, predicateGroup = 4, functionCall = 8 };

/// What a parse knows about the text ahead, and what it learned where it went wrong. Both keep the work
/// linear: what failed at a place is not tried there again, and whether a value begins a comparison is found
/// out once for all operands of a chain ("@a + @b / @c").
class Lookahead {
 public:
  explicit Lookahead(std::string_view text) : text_(text) {}

  /// Whether the construct whose inside begins at `at` is known to fail.
  bool failed(Construct construct, std::size_t at) const;
  void noteFailure(Construct construct, std::size_t at);

  /// Whether a relation follows the value at `at`, which may be a chain of operands, and the comparison is
  /// not known to fail.
  bool relationFollows(std::size_t at);
  /// Whether there is a function call whose bracket is not closed. A relation may follow such a call.
  bool sawOpenCall() const { return sawOpenCall_; }
  /// Where the comparison that was given up last would have wanted the relation that does not follow.
  std::optional<std::size_t> missingRelation() const { return missingRelation_; }
  /// Notes that the comparison at `at` failed though a relation follows. So will those at the further
  /// operands of its chain, up to the one that was no value.
  void noteFailedComparison(std::size_t at);

  /// The operands skipped so far, as a measure of the work.
  std::size_t steps() const { return steps_; }

 private:
  enum class Comparison : std::uint8_t { unknown, possible, impossible };

  Comparison& comparisonAt(std::size_t at);
  bool operandFailed(std::size_t at) const;
  std::size_t operandEnd(std::size_t at);
  bool isOpenCall(std::size_t operand);
  std::size_t nextOperand(std::size_t sign) const;
  std::size_t behindBracket(std::size_t open);

  std::string_view text_;
  /// For each offset the constructs that failed there.
  std::vector<std::uint8_t> failures_;
  /// For each operand of a chain what is known about a comparison there.
  std::vector<Comparison> comparisons_;
  /// For each opening bracket the offset behind the closing one.
  std::vector<std::size_t> brackets_;
  std::optional<std::size_t> missingRelation_;
  bool sawOpenCall_ = false;
  std::size_t steps_ = 0;
};

}  // namespace vell::outline_path
