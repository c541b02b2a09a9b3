#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "outline_path/in_place.h"
#include "outline_path/predicate_expression.h"

// A part of the tree; include "outline_path/expression.h", which completes the types named here.

namespace vell::outline_path {

/// A text that a matching row contains, compared as a text test compares it.
struct MatchTerm {
  std::string text;
  // clang-tidy 14 takes the zero that it compares with for a pointer. NOLINTNEXTLINE(modernize-use-nullptr)
  auto operator<=>(const MatchTerm&) const = default;
};
/// A set: sorted, each term once. Most are empty and then as small as can be.
class MatchTerms {
 public:
  MatchTerms() = default;
  explicit MatchTerms(std::vector<MatchTerm> sorted) {
    if (!sorted.empty()) terms_.emplace(std::move(sorted));
  }
  bool empty() const { return !terms_; }
  const MatchTerm* begin() const { return terms_ ? (*terms_)->data() : nullptr; }
  const MatchTerm* end() const { return terms_ ? (*terms_)->data() + (*terms_)->size() : nullptr; }
  bool operator==(const MatchTerms&) const = default;

 private:
  std::optional<Box<std::vector<MatchTerm>>> terms_;
};

/// `[index]`; negative counts from the end.
struct SliceIndex {
  std::int64_t index = 0;
  bool operator==(const SliceIndex&) const = default;
};
/// `[start:end]`, the end exclusive; a bound that is left out reaches to that end.
struct SliceRange {
  std::optional<std::int64_t> start, end;
  bool operator==(const SliceRange&) const = default;
};
using Slice = std::variant<SliceIndex, SliceRange>;

/// What a step's candidates must pass: a type test, a predicate, or both.
struct StepFilter {
  std::optional<TypeTest> typeTest;
  std::optional<PredicateExpression> predicate;
  bool operator==(const StepFilter&) const = default;
};

/// One step of a path: from each row along `axis`, those that pass `filter`, of them `slice`.
class Step {
 public:
  using Filter = StepFilter;

  struct Meta {
    /// The step asks for a position among the candidates or their number, or takes a slice of them.
    bool requiresContextPositions = false;
    /// Each of these stands in the text of every row that the step selects.
    MatchTerms matchingTerms;
    bool operator==(const Meta&) const = default;
  };

  Step(Axis axis, Filter filter, const std::optional<Slice>& slice = {})
      : axis_(axis), filter_(std::move(filter)) {
    finish(slice);
  }
  /// The same with a predicate that is made in its place.
  template <typename Make>
  Step(Axis axis, std::optional<TypeTest> typeTest, const InPlace<Make>& predicate,
       const std::optional<Slice>& slice)
      : axis_(axis), filter_{typeTest, std::optional<PredicateExpression>(predicate)} {
    finish(slice);
  }
  Axis axis() const { return axis_; }
  const Filter& filter() const { return filter_; }
  const std::optional<Slice>& slice() const { return slice_; }
  const Meta& meta() const { return meta_; }
  /// The filter's predicate, null where it has none.
  const PredicateExpression* predicate() const { return filter_.predicate ? &*filter_.predicate : nullptr; }
  bool operator==(const Step&) const = default;

 private:
  void finish(const std::optional<Slice>& slice) {
    if (slice) slice_ = slice;
    meta_.requiresContextPositions = slice.has_value();
    if (filter_.predicate) noteFactsOf(*filter_.predicate);
  }
  void noteFactsOf(const PredicateExpression& predicate);

  Axis axis_;
  Filter filter_;
  std::optional<Slice> slice_;
  Meta meta_;
};

using Steps = std::vector<Step, NodeAllocator<Step>>;

/// What a whole path amounts to, for evaluators with a short cut for it. The "single self" shapes are
/// relative paths of one self step without a slice; what they look for stands in that step's filter.
enum class MatchShape : std::uint8_t {
  singleSelfTypeTest,
  /// A single attribute test, perhaps with a type test.
  singleSelfContainsAttribute,
  /// A single text test, perhaps with a type test.
  singleSelfContainsText,
  singleSelfPredicate,
  allSingleElementSteps,
  general,
};

}  // namespace vell::outline_path
