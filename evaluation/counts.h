#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "evaluation/context.h"
#include "outline_path/words.h"

namespace vell::evaluation {

// Numbers that many rows ask for, found in one pass over the outline. The outline must be numbered.

/// The place of each row among its siblings of the same type.
class TypeOrdinals {
 public:
  explicit TypeOrdinals(const Outline& outline);

  /// From 1, counted from the first and from the last of them.
  std::uint32_t fromFirst(const Row& row) const { return fromFirst_[row.order()]; }
  std::uint32_t fromLast(const Row& row) const { return fromLast_[row.order()]; }

 private:
  std::vector<std::uint32_t> fromFirst_, fromLast_;
};

/// How many rows that pass a test stand along an axis from any row.
class AxisCounts {
 public:
  AxisCounts(const Outline& outline, const std::function<bool(const Row&)>& passes);

  std::size_t along(outline_path::Axis axis, const Row& from) const;

 private:
  using Counts = std::vector<std::uint32_t>;

  std::size_t between(std::size_t begin, std::size_t end) const { return before_[end] - before_[begin]; }

  Counts before_;   ///< in document order
  Counts above_;    ///< ancestors
  Counts earlier_;  ///< earlier siblings
  Counts children_;
};

}  // namespace vell::evaluation
