#include "document/row.h"

namespace vell::document {

std::string_view name(RowType type) {
  constexpr std::string_view names[] = {"body", "heading", "task",    "note",      "quote",
                                        "code", "hr",      "ordered", "unordered", "root"};
  return names[static_cast<std::size_t>(type)];
}

std::optional<RowType> rowType(std::string_view wanted) {
  for (const RowType type : rowTypes)
    if (name(type) == wanted) return type;
  return std::nullopt;
}

std::vector<const Row*> childrenOf(const Row& parent) {
  std::vector<const Row*> children;
  for (const Row* child = parent.firstChild(); child; child = child->next()) children.push_back(child);
  return children;
}

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
