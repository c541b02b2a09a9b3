#pragma once

#include "evaluation/axes.h"
#include "evaluation/compiler.h"
#include "evaluation/slices.h"

namespace vell::evaluation {

/// A compiled step of a path; refers to the step.
class StepPlan {
 public:
  StepPlan(const outline_path::Step& step, const Compiler& compiler);

  const outline_path::Step& step() const { return step_; }
  outline_path::Axis axis() const { return step_.axis(); }
  bool isRun() const { return axis() == outline_path::Axis::run; }
  TypeFilter filter() const { return filter_; }
  /// What the step takes of the rows from one context.
  const std::optional<outline_path::Slice>& slice() const { return slice_; }
  /// The predicate is asked about the rows in the slice, not before.
  bool slicesFirst() const { return slicesFirst_; }
  /// Whether the predicate asks for positions.
  bool asksForPositions() const { return asksForPositions_; }

  /// Whether a row passes the type test and the predicate, where the predicate asks for no position.
  bool matches(const Row& row) const { return filter_.passes(row) && satisfiesPredicate(Context::of(row)); }
  /// Drops the rows that the predicate does not hold for. `rows` are all candidates from one context; from
  /// several where the predicate does not ask for positions.
  void keepMatching(Rows& rows) const;
  /// How many runs of the row the step takes.
  std::size_t countRuns(const Row& row) const;

 private:
  void compile(const outline_path::PredicateExpression& predicate, const Compiler& compiler);
  bool satisfiesPredicate(const Context& context) const;

  const outline_path::Step& step_;
  Work& work_;
  TypeFilter filter_;
  std::vector<Predicate> predicates_;  ///< all of them have to hold
  std::optional<outline_path::Slice> slice_;
  bool slicesFirst_ = false;
  bool asksForPositions_ = false;
};

}  // namespace vell::evaluation
