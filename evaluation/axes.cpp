#include "evaluation/axes.h"

#include <algorithm>
#include <iterator>

namespace vell::evaluation {
namespace {

using outline_path::Axis;
using outline_path::TypeTest;

RowType typeOf(TypeTest test) {
  switch (test) {
    case TypeTest::heading:
      return RowType::heading;
    case TypeTest::quote:
      return RowType::quote;
    case TypeTest::code:
      return RowType::code;
    case TypeTest::note:
      return RowType::note;
    case TypeTest::unordered:
      return RowType::unordered;
    case TypeTest::ordered:
      return RowType::ordered;
    case TypeTest::task:
      return RowType::task;
    case TypeTest::hr:
      return RowType::hr;
    case TypeTest::body:
      return RowType::body;
    case TypeTest::any:
    case TypeTest::row:
    case TypeTest::run:
      break;
  }
  // No row is a run, and the root is on no axis.
  return RowType::root;
}

bool isBefore(const Row* left, const Row* right) { return left->order() < right->order(); }

bool contains(const Row& above, const Row& below) {
  return above.order() < below.order() && below.order() < above.orderEnd();
}

void append(Rows& rows, Range range, const Outline& outline, TypeFilter filter, Work& work) {
  work.spend(range.end - range.begin);
  for (std::size_t at = range.begin; at < range.end; ++at) {
    const Row* row = outline.rowsInOrder()[at];
    if (filter.passes(*row)) rows.push_back(row);
  }
}

/// Each row from each context.
Rows collectEach(Axis axis, const Rows& contexts, const Outline& outline, TypeFilter filter, Work& work) {
  Rows found;
  for (const Row* context : contexts) {
    walk(axis, *context, outline.root(), work, [&](const Row& row) {
      if (filter.passes(row)) found.push_back(&row);
      return true;
    });
  }
  sortInDocumentOrder(found, outline);
  return found;
}

/// Leaves the contexts out that lie within an earlier one, whose descendants are among those of that one.
Rows collectDescendants(Axis axis, const Rows& contexts, const Outline& outline, TypeFilter filter,
                        Work& work) {
  Rows found;
  std::size_t passed = 0;
  for (const Row* context : contexts) {
    if (context->order() < passed) continue;
    append(found, *rangeOf(axis, *context, outline), outline, filter, work);
    passed = context->orderEnd();
  }
  return found;
}

/// The way up from a context ends where that from the one before it has passed.
Rows collectAncestors(Axis axis, const Rows& contexts, const Outline& outline, TypeFilter filter,
                      Work& work) {
  Rows found;
  const Row* last = nullptr;
  for (const Row* context : contexts) {
    walk(axis, *context, outline.root(), work, [&](const Row& row) {
      const bool hasPassed =
          last != nullptr && (contains(row, *last) || (axis == Axis::ancestorOrSelf && &row == last));
      if (!hasPassed && filter.passes(row)) found.push_back(&row);
      return !hasPassed;
    });
    last = context;
  }
  sortInDocumentOrder(found, outline);
  return found;
}

Rows collectParents(const Rows& contexts, const Outline& outline, TypeFilter filter) {
  Rows parents;
  for (const Row* context : contexts) {
    const Row* parent = context->parent();
    const bool isNew = parents.empty() || parents.back() != parent;
    if (isNew && parent != nullptr && parent != &outline.root() && filter.passes(*parent)) {
      parents.push_back(parent);
    }
  }
  sortInDocumentOrder(parents, outline);
  return parents;
}

/// Of the contexts below one parent the outermost reaches all siblings that any of them does.
Rows collectSiblings(Axis axis, Rows contexts, const Outline& outline, TypeFilter filter, Work& work) {
  if (axis == Axis::precedingSibling) std::reverse(contexts.begin(), contexts.end());
  std::vector<bool> isDone(outline.rowsInOrder().size());
  Rows outermost;
  for (const Row* context : contexts) {
    if (context->parent() == nullptr || isDone[context->parent()->order()]) continue;
    isDone[context->parent()->order()] = true;
    outermost.push_back(context);
  }
  return collectEach(axis, outermost, outline, filter, work);
}

/// What follows any context follows the one whose subtree ends first.
Rows collectFollowing(const Rows& contexts, const Outline& outline, TypeFilter filter, Work& work) {
  const auto endsBefore = [](const Row* left, const Row* right) {
    return left->orderEnd() < right->orderEnd();
  };
  const Row* first = *std::min_element(contexts.begin(), contexts.end(), endsBefore);
  Rows found;
  append(found, *rangeOf(Axis::following, *first, outline), outline, filter, work);
  return found;
}

}  // namespace

TypeFilter::TypeFilter(TypeTest test)
    : any_(test == TypeTest::any || test == TypeTest::row), type_(typeOf(test)) {}

std::optional<Range> rangeOf(Axis axis, const Row& from, const Outline& outline) {
  const bool isRoot = &from == &outline.root();
  switch (axis) {
    case Axis::descendant:
    case Axis::descendantShortcut:
      return Range{from.order() + std::size_t{1}, from.orderEnd()};
    case Axis::descendantOrSelf:
    case Axis::descendantOrSelfShortcut:
      return Range{isRoot ? 1 : std::size_t{from.order()}, from.orderEnd()};
    case Axis::following:
      return Range{from.orderEnd(), outline.rowsInOrder().size()};
    default:
      return std::nullopt;
  }
}

void sortInDocumentOrder(Rows& rows, const Outline& outline) {
  constexpr std::size_t few = 16;
  const auto isNotBefore = [](const Row* left, const Row* right) { return !isBefore(left, right); };
  if (std::adjacent_find(rows.begin(), rows.end(), isNotBefore) == rows.end()) return;
  const auto& all = outline.rowsInOrder();
  if (rows.size() < all.size() / few) {
    std::sort(rows.begin(), rows.end(), isBefore);
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return;
  }
  std::vector<bool> isIn(all.size());
  for (const Row* row : rows) isIn[row->order()] = true;
  rows.clear();
  std::copy_if(all.begin(), all.end(), std::back_inserter(rows),
               [&](const Row* row) { return isIn[row->order()]; });
}

Rows rowsAlong(Axis axis, const Rows& contexts, const Outline& outline, TypeFilter filter, Work& work) {
  if (contexts.empty()) return {};
  work.spend(contexts.size());
  switch (axis) {
    case Axis::descendant:
    case Axis::descendantShortcut:
    case Axis::descendantOrSelf:
    case Axis::descendantOrSelfShortcut:
      return collectDescendants(axis, contexts, outline, filter, work);
    case Axis::ancestor:
    case Axis::ancestorOrSelf:
      return collectAncestors(axis, contexts, outline, filter, work);
    case Axis::parent:
    case Axis::parentShortcut:
      return collectParents(contexts, outline, filter);
    case Axis::followingSibling:
    case Axis::precedingSibling:
      return contexts.size() == 1 ? collectEach(axis, contexts, outline, filter, work)
                                  : collectSiblings(axis, contexts, outline, filter, work);
    case Axis::following:
      return collectFollowing(contexts, outline, filter, work);
    case Axis::preceding:
      // What precedes any context precedes the last.
      return collectEach(axis, {contexts.back()}, outline, filter, work);
    default:
      return collectEach(axis, contexts, outline, filter, work);
  }
}

}  // namespace vell::evaluation
