#include "headless/evaluation/axes.h"

#include <algorithm>
#include <unordered_set>

namespace vell::headless {
namespace {

using outline_path::Axis;
using Accepts = std::function<bool(const Row&)>;

bool isBefore(const Row* left, const Row* right) { return left->order() < right->order(); }

bool contains(const Row& above, const Row& below) {
  return above.order() < below.order() && below.order() < above.orderEnd();
}

/// Each row from each context, context after context.
Rows collectUnordered(Axis axis, const Rows& contexts, const Row& root, const Accepts& accepts) {
  Rows found;
  for (const Row* context : contexts) {
    walk(axis, *context, root, [&](const Row& row) {
      if (accepts(row)) found.push_back(&row);
      return true;
    });
  }
  return found;
}

/// The same in document order, each row once.
Rows collectEach(Axis axis, const Rows& contexts, const Row& root, const Accepts& accepts) {
  Rows found = collectUnordered(axis, contexts, root, accepts);
  putInOrder(found);
  return found;
}

/// Leaves the contexts out that lie within an earlier one, whose descendants are among those of that one.
Rows collectDescendants(Axis axis, const Rows& contexts, const Row& root, const Accepts& accepts) {
  Rows tops;
  for (const Row* context : contexts) {
    if (tops.empty() || !contains(*tops.back(), *context)) tops.push_back(context);
  }
  // In order as they come; to see that again would cost as much as the walk.
  return collectUnordered(axis, tops, root, accepts);
}

/// The way up from a context ends where that from the one before it has passed.
Rows collectAncestors(Axis axis, const Rows& contexts, const Row& root, const Accepts& accepts) {
  Rows found;
  const Row* last = nullptr;
  for (const Row* context : contexts) {
    const bool withSelf = axis == Axis::ancestorOrSelf;
    for (const Row* row = withSelf ? context : context->parent(); row != nullptr && row != &root;
         row = row->parent()) {
      if (last != nullptr && (contains(*row, *last) || (withSelf && row == last))) break;
      if (accepts(*row)) found.push_back(row);
    }
    last = context;
  }
  putInOrder(found);
  return found;
}

Rows collectParents(const Rows& contexts, const Row& root, const Accepts& accepts) {
  Rows parents;
  for (const Row* context : contexts) {
    const Row* parent = context->parent();
    const bool isNew = parents.empty() || parents.back() != parent;
    if (parent != nullptr && parent != &root && isNew) parents.push_back(parent);
  }
  putInOrder(parents);
  parents.erase(
      std::remove_if(parents.begin(), parents.end(), [&](const Row* row) { return !accepts(*row); }),
      parents.end());
  return parents;
}

/// Of the contexts below one parent the outermost reaches all siblings that any of them does.
Rows collectSiblings(Axis axis, Rows contexts, const Row& root, const Accepts& accepts) {
  if (axis == Axis::precedingSibling) std::reverse(contexts.begin(), contexts.end());
  std::unordered_set<const Row*> parents;
  Rows outermost;
  for (const Row* context : contexts) {
    if (parents.insert(context->parent()).second) outermost.push_back(context);
  }
  return collectEach(axis, outermost, root, accepts);
}

/// What follows any context follows the one whose subtree ends first; what precedes any precedes the last.
const Row* outermostContext(Axis axis, const Rows& contexts) {
  if (axis == Axis::preceding) return contexts.back();
  return *std::min_element(contexts.begin(), contexts.end(), [](const Row* left, const Row* right) {
    return left->orderEnd() < right->orderEnd();
  });
}

}  // namespace

void putInOrder(Rows& rows) {
  if (!std::is_sorted(rows.begin(), rows.end(), isBefore)) std::sort(rows.begin(), rows.end(), isBefore);
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
}

Rows rowsAlong(Axis axis, const Rows& contexts, const Row& root, const Accepts& accepts) {
  if (contexts.empty()) return {};
  switch (axis) {
    case Axis::descendant:
    case Axis::descendantShortcut:
    case Axis::descendantOrSelf:
    case Axis::descendantOrSelfShortcut:
      return collectDescendants(axis, contexts, root, accepts);
    case Axis::ancestor:
    case Axis::ancestorOrSelf:
      return collectAncestors(axis, contexts, root, accepts);
    case Axis::parent:
    case Axis::parentShortcut:
      return collectParents(contexts, root, accepts);
    case Axis::followingSibling:
    case Axis::precedingSibling:
      return collectSiblings(axis, contexts, root, accepts);
    case Axis::following:
    case Axis::preceding:
      return collectEach(axis, {outermostContext(axis, contexts)}, root, accepts);
    default:
      return collectEach(axis, contexts, root, accepts);
  }
}

}  // namespace vell::headless
