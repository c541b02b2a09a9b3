#include "headless/commands/block.h"

namespace vell::headless {
namespace {

/// The last row below `top` that no fold hides; `top` itself if it has none.
const Row* lastVisibleBelow(const Editor& editor, const Row& top) {
  const Row* row = &top;
  while (row->lastChild() != nullptr && !editor.isCollapsed(*row)) row = row->lastChild();
  return row;
}

}  // namespace

std::vector<const Row*> selectedBlock(Transaction& transaction) {
  std::vector<const Row*> tops;
  for (const Row* row : transaction.editor().selectedRows())
    if (tops.empty() || !isAncestor(*tops.back(), *row)) tops.push_back(row);
  return tops;
}

std::vector<const Row*> movableBlock(Transaction& transaction) {
  std::vector<const Row*> block = selectedBlock(transaction);
  for (const Row* row : block)
    if (row->parent() != block.front()->parent()) return {};
  return block;
}

const Row* visibleAbove(const Editor& editor, const Row& row) {
  const Row& top = editor.focused();
  if (&row == &top) return nullptr;
  if (row.previous() != nullptr) return lastVisibleBelow(editor, *row.previous());
  return row.parent() == &top ? nullptr : row.parent();
}

const Row* visibleBelow(const Editor& editor, const Row& row) {
  const Row& top = editor.focused();
  const bool isOpen = &row == &top || !editor.isCollapsed(row);
  return isOpen ? nextInOrder(&row, &top) : nextAfterSubtree(&row, &top);
}

}  // namespace vell::headless
