#pragma once

#include "evaluation/axes.h"
#include "evaluation/compiler.h"
#include "evaluation/slices.h"

namespace vell::evaluation {

/// A compiled step of a path; refers to the step.
class StepPlan {
 public:
  StepPlan(const outline_path::Step& step, const Compiler& compiler);

  outline_path::Axis axis() const { return step_.axis(); }
  bool isRun() const { return axis() == outline_path::Axis::run; }
  const std::optional<outline_path::Slice>& slice() const { return step_.slice(); }
  TypeFilter filter() const { return filter_; }
  bool hasPredicate() const { return predicate_ != nullptr; }
  /// Whether the predicate asks for positions; a slice alone takes what has passed.
  bool asksForPositions() const { return asksForPositions_; }

  /// Whether a row passes the type test and the predicate, where the predicate asks for no position.
  bool matches(const Row& row) const { return filter_.passes(row) && satisfiesPredicate(Context::of(row)); }
  /// Drops the rows that the predicate does not hold for. `rows` are all candidates from one context; from
  /// several where the predicate does not ask for positions.
  void keepMatching(Rows& rows) const;
  /// How many runs of the row the step takes.
  std::size_t countRuns(const Row& row) const;

 private:
  bool satisfiesPredicate(const Context& context) const { return !predicate_ || predicate_(context); }

  const outline_path::Step& step_;
  TypeFilter filter_;
  Predicate predicate_;  ///< empty where there is none
  bool asksForPositions_ = false;
};

}  // namespace vell::evaluation
