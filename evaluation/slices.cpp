#include "evaluation/slices.h"

#include <algorithm>
#include <cstdint>

namespace vell::evaluation {
namespace {

using outline_path::Axis;
using outline_path::Slice;
using outline_path::SliceIndex;
using outline_path::SliceRange;

std::size_t positionOf(std::int64_t bound, std::size_t count) {
  if (bound >= 0) return std::min(static_cast<std::size_t>(bound), count);
  const auto back = static_cast<std::size_t>(-(bound + 1)) + 1;
  return back > count ? 0 : count - back;
}

bool isSibling(Axis axis) { return axis == Axis::followingSibling || axis == Axis::precedingSibling; }

/// The candidates from all contexts, and which of them were taken from any.
class SharedCandidates {
 public:
  SharedCandidates(Axis axis, Rows rows, const Outline& outline, Work& work)
      : axis_(axis), rows_(std::move(rows)), outline_(outline), work_(work), changes_(rows_.size() + 1) {
    if (isSibling(axis)) {
      std::stable_sort(rows_.begin(), rows_.end(), [](const Row* left, const Row* right) {
        return left->parent()->order() < right->parent()->order();
      });
    }
    for (const Row* row : rows_) keys_.push_back(keyOf(*row));
  }

  void take(const Row& context, const Slice& slice) {
    work_.spend(2);
    const std::vector<Range> ranges = rangesFrom(context);
    std::size_t count = 0;
    for (const Range& range : ranges) count += range.end - range.begin;
    const bool nearestLast = axis_ == Axis::preceding || axis_ == Axis::precedingSibling;
    Range left = sliceRange(slice, count);
    // Counted from the end, as the ranges are.
    if (!nearestLast) left = {count - left.end, count - left.begin};
    for (const Range& range : ranges) {
      const std::size_t length = range.end - range.begin;
      const Range part{std::min(left.begin, length), std::min(left.end, length)};
      ++changes_[range.end - part.end];
      --changes_[range.end - part.begin];
      left = {left.begin - part.begin, left.end - part.end};
    }
  }

  Rows taken() const {
    Rows rows;
    std::int64_t takers = 0;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      takers += changes_[i];
      if (takers > 0) rows.push_back(rows_[i]);
    }
    sortInDocumentOrder(rows, outline_);
    return rows;
  }

 private:
  using Key = std::uint64_t;

  static Key childKey(std::uint32_t parent, std::uint32_t order) { return Key{parent} << 32 | order; }
  Key keyOf(const Row& row) const {
    return isSibling(axis_) ? childKey(row.parent()->order(), row.order()) : row.order();
  }
  std::size_t firstFrom(Key key) const {
    return static_cast<std::size_t>(std::lower_bound(keys_.begin(), keys_.end(), key) - keys_.begin());
  }
  Range between(Key begin, Key end) const { return {firstFrom(begin), firstFrom(end)}; }

  /// Where the candidates from one context stand, the last range first.
  std::vector<Range> rangesFrom(const Row& context) const {
    if (axis_ == Axis::preceding) return rangesBefore(context);
    if (const auto all = rangeOf(axis_, context, outline_)) return {between(all->begin, all->end)};
    if (context.parent() == nullptr) return {};
    const std::uint32_t parent = context.parent()->order(), order = context.order();
    if (axis_ == Axis::precedingSibling) return {between(childKey(parent, 0), childKey(parent, order))};
    return {between(childKey(parent, order + 1), childKey(parent + 1, 0))};
  }

  /// What is above the context does not precede it.
  std::vector<Range> rangesBefore(const Row& context) const {
    std::vector<Range> ranges;
    std::size_t end = firstFrom(context.order());
    for (const Row* above = context.parent(); above != nullptr; above = above->parent()) {
      work_.spend(1);
      const std::size_t place = firstFrom(above->order());
      if (place == end || rows_[place] != above) continue;
      ranges.push_back({place + 1, end});
      end = place;
    }
    ranges.push_back({0, end});
    return ranges;
  }

  Axis axis_;
  Rows rows_;
  std::vector<Key> keys_;  ///< of the rows, ascending
  const Outline& outline_;
  Work& work_;
  /// At each row by how much the number of contexts changes that take it.
  std::vector<std::int64_t> changes_;
};

}  // namespace

Range sliceRange(const Slice& slice, std::size_t count) {
  if (const auto* bounds = std::get_if<SliceRange>(&slice)) {
    const std::size_t begin = bounds->start ? positionOf(*bounds->start, count) : 0;
    const std::size_t end = bounds->end ? positionOf(*bounds->end, count) : count;
    return {begin, std::max(begin, end)};
  }
  const std::int64_t index = std::get<SliceIndex>(slice).index;
  const bool isOutside =
      index < 0 ? static_cast<std::size_t>(-(index + 1)) >= count : static_cast<std::size_t>(index) >= count;
  const std::size_t begin = positionOf(index, count);
  return isOutside ? Range{count, count} : Range{begin, begin + 1};
}

std::size_t candidatesNeeded(const Slice& slice) {
  if (const auto* index = std::get_if<SliceIndex>(&slice)) {
    return index->index < 0 ? allCandidates : static_cast<std::size_t>(index->index) + 1;
  }
  const auto& range = std::get<SliceRange>(slice);
  const bool fromBegin = range.start.value_or(0) >= 0 && range.end && *range.end >= 0;
  return fromBegin ? static_cast<std::size_t>(*range.end) : allCandidates;
}

bool sharesCandidates(Axis axis) {
  return axis == Axis::descendant || axis == Axis::descendantShortcut || axis == Axis::descendantOrSelf ||
         axis == Axis::descendantOrSelfShortcut || axis == Axis::following || axis == Axis::preceding ||
         isSibling(axis);
}

Rows slicesFromEach(Axis axis, const Rows& contexts, Rows candidates, const Slice& slice,
                    const Outline& outline, Work& work) {
  SharedCandidates shared(axis, std::move(candidates), outline, work);
  for (const Row* context : contexts) shared.take(*context, slice);
  return shared.taken();
}

}  // namespace vell::evaluation
