#pragma once

#include <optional>
#include <vector>

#include "evaluation/context.h"
#include "evaluation/work.h"
#include "outline_path/words.h"

namespace vell::evaluation {

/// The row types that a type test lets pass.
class TypeFilter {
 public:
  explicit TypeFilter(outline_path::TypeTest test);

  bool passes(const Row& row) const { return any_ || row.type() == type_; }

 private:
  bool any_ = false;
  RowType type_ = RowType::root;
};

/// Rows in document order, none of them twice.
using Rows = std::vector<const Row*>;

/// Calls `take(row)` for the rows along `axis` from `from`, the nearest first, until it returns false. The
/// outline's root is on no axis. The outline must be numbered.
template <typename Take>
void walk(outline_path::Axis axis, const Row& from, const Row& root, Work& work, Take take) {
  using outline_path::Axis;
  const auto visit = [&](const Row& row) {
    work.spend(1);
    return take(row);
  };
  const auto up = [&](const Row* row) {
    while (row != nullptr && row != &root && visit(*row)) row = row->parent();
  };
  switch (axis) {
    case Axis::self:
    case Axis::selfShortcut:
    case Axis::run:
      if (&from != &root) visit(from);
      return;
    case Axis::parent:
    case Axis::parentShortcut:
      if (from.parent() != nullptr && from.parent() != &root) visit(*from.parent());
      return;
    case Axis::ancestor:
      return up(from.parent());
    case Axis::ancestorOrSelf:
      return up(&from);
    case Axis::child:
      for (const Row* row = from.firstChild(); row != nullptr && visit(*row);) row = row->next();
      return;
    case Axis::descendantOrSelf:
    case Axis::descendantOrSelfShortcut:
      if (&from != &root && !visit(from)) return;
      [[fallthrough]];
    case Axis::descendant:
    case Axis::descendantShortcut:
      for (const Row* row = from.firstChild(); row != nullptr && visit(*row);) row = nextInOrder(row, &from);
      return;
    case Axis::following:
      for (const Row* row = nextAfterSubtree(&from, &root); row != nullptr && visit(*row);) {
        row = nextInOrder(row, &root);
      }
      return;
    case Axis::followingSibling:
      for (const Row* row = from.next(); row != nullptr && visit(*row);) row = row->next();
      return;
    case Axis::precedingSibling:
      for (const Row* row = from.previous(); row != nullptr && visit(*row);) row = row->previous();
      return;
    case Axis::preceding: {
      const auto before = [](const Row* row) {
        if (row->previous() == nullptr) return row->parent();
        row = row->previous();
        while (row->lastChild() != nullptr) row = row->lastChild();
        return row;
      };
      for (const Row* row = &from; row != nullptr && row != &root;) {
        row = before(row);
        work.spend(1);
        const bool isAbove =
            row == nullptr || (row->order() < from.order() && from.order() < row->orderEnd());
        if (!isAbove && !visit(*row)) return;
      }
      return;
    }
  }
}

/// Positions in a list of rows, the end exclusive.
struct Range {
  std::size_t begin, end;
};
/// The positions in Outline::rowsInOrder() of the rows on an axis, where they stand side by side: below a
/// row, or behind it.
std::optional<Range> rangeOf(outline_path::Axis axis, const Row& from, const Outline& outline);

/// All rows along `axis` from any of `contexts` that pass the filter. Each row is looked at once, however
/// many contexts reach it.
Rows rowsAlong(outline_path::Axis axis, const Rows& contexts, const Outline& outline, TypeFilter filter,
               Work& work);

/// Sorts rows in document order and drops repeated ones.
void sortInDocumentOrder(Rows& rows, const Outline& outline);

}  // namespace vell::evaluation
