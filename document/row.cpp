#include "document/row.h"

namespace vell::document {

const Row* nextInOrder(const Row* row, const Row* top) {
  return row->firstChild() ? row->firstChild() : nextAfterSubtree(row, top);
}

const Row* nextAfterSubtree(const Row* row, const Row* top) {
  for (; row && row != top; row = row->parent()) {
    if (row->next()) return row->next();
  }
  return nullptr;
}

bool isAncestor(const Row& ancestor, const Row& row) {
  for (const Row* above = row.parent(); above; above = above->parent()) {
    if (above == &ancestor) return true;
  }
  return false;
}

}  // namespace vell::document
