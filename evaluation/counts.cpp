#include "evaluation/counts.h"

#include <array>

namespace vell::evaluation {

using outline_path::Axis;

TypeOrdinals::TypeOrdinals(const Outline& outline)
    : fromFirst_(outline.rowsInOrder().size(), 1), fromLast_(outline.rowsInOrder().size(), 1) {
  using Seen = std::array<std::uint32_t, document::rowTypes.size() + 1>;
  for (const Row* parent : outline.rowsInOrder()) {
    Seen before{}, behind{};
    for (const Row* row = parent->firstChild(); row != nullptr; row = row->next())
      fromFirst_[row->order()] = ++before[static_cast<std::size_t>(row->type())];
    for (const Row* row = parent->lastChild(); row != nullptr; row = row->previous())
      fromLast_[row->order()] = ++behind[static_cast<std::size_t>(row->type())];
  }
}

AxisCounts::AxisCounts(const Outline& outline, const std::function<bool(const Row&)>& passes) {
  const std::size_t rows = outline.rowsInOrder().size();
  before_.resize(rows + 1);
  for (Counts* counts : {&above_, &earlier_, &children_}) counts->resize(rows);
  for (const Row* row : outline.rowsInOrder()) {
    const Row* parent = row->parent();
    // The root is on no axis.
    const bool counted = parent != nullptr && passes(*row);
    before_[row->order() + 1] = before_[row->order()] + (counted ? 1 : 0);
    if (parent == nullptr) continue;
    const std::size_t above = parent->order();
    above_[row->order()] = above_[above] + static_cast<std::uint32_t>(between(above, above + 1));
    earlier_[row->order()] = children_[above];
    if (counted) ++children_[above];
  }
}

std::size_t AxisCounts::along(Axis axis, const Row& from) const {
  const std::size_t order = from.order(), end = from.orderEnd();
  const std::size_t self = between(order, order + 1);
  switch (axis) {
    case Axis::self:
    case Axis::selfShortcut:
    case Axis::run:
      return self;
    case Axis::parent:
    case Axis::parentShortcut:
      return from.parent() == nullptr ? 0 : between(from.parent()->order(), from.parent()->order() + 1);
    case Axis::ancestor:
      return above_[order];
    case Axis::ancestorOrSelf:
      return above_[order] + self;
    case Axis::child:
      return children_[order];
    case Axis::descendant:
    case Axis::descendantShortcut:
      return between(order + 1, end);
    case Axis::descendantOrSelf:
    case Axis::descendantOrSelfShortcut:
      return between(order, end);
    case Axis::following:
      return before_.back() - before_[end];
    case Axis::preceding:
      return before_[order] - above_[order];
    case Axis::followingSibling:
      return from.parent() == nullptr ? 0 : children_[from.parent()->order()] - earlier_[order] - self;
    case Axis::precedingSibling:
      return earlier_[order];
  }
  return 0;
}

}  // namespace vell::evaluation
