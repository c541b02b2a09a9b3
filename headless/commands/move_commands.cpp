#include <algorithm>

#include "headless/commands/block.h"
#include "headless/commands/commands.h"

namespace vell::headless {
namespace {

void placeAll(Transaction& transaction, const std::vector<const Row*>& block, const Row& parent,
              const Row* before) {
  for (const Row* row : block) transaction.edit().place(*row, parent, before);
}

bool arrange(Transaction& transaction, const Row& parent, const std::vector<const Row*>& children) {
  if (children == childrenOf(parent)) return false;
  placeAll(transaction, children, parent, nullptr);
  return true;
}

const std::string& textOf(const Row* row) { return row->text().string(); }

template <typename Less>
bool sortChildren(Transaction& transaction, Less less) {
  const Row& parent = transaction.editor().head();
  auto children = childrenOf(parent);
  std::stable_sort(children.begin(), children.end(), less);
  return arrange(transaction, parent, children);
}

bool moveUp(Transaction& transaction) {
  const auto block = movableBlock(transaction);
  if (block.empty() || block.front()->previous() == nullptr) return false;
  placeAll(transaction, block, *block.front()->parent(), block.front()->previous());
  return true;
}

bool moveDown(Transaction& transaction) {
  const auto block = movableBlock(transaction);
  if (block.empty() || block.back()->next() == nullptr) return false;
  placeAll(transaction, block, *block.back()->parent(), block.back()->next()->next());
  return true;
}

bool moveToTop(Transaction& transaction) {
  const auto block = movableBlock(transaction);
  if (block.empty() || block.front()->previous() == nullptr) return false;
  placeAll(transaction, block, *block.front()->parent(), block.front()->parent()->firstChild());
  return true;
}

bool moveToBottom(Transaction& transaction) {
  const auto block = movableBlock(transaction);
  if (block.empty() || block.back()->next() == nullptr) return false;
  placeAll(transaction, block, *block.front()->parent(), nullptr);
  return true;
}

bool indent(Transaction& transaction) {
  const auto block = movableBlock(transaction);
  if (block.empty() || block.front()->previous() == nullptr) return false;
  const Row& parent = *block.front()->previous();
  transaction.editor().setCollapsed(parent, false);
  placeAll(transaction, block, parent, nullptr);
  return true;
}

bool outdent(Transaction& transaction) {
  const auto block = movableBlock(transaction);
  if (block.empty()) return false;
  const Row& parent = *block.front()->parent();
  if (parent.parent() == nullptr || &parent == &transaction.editor().focused()) return false;
  placeAll(transaction, block, *parent.parent(), parent.next());
  return true;
}

bool group(Transaction& transaction) {
  const auto block = movableBlock(transaction);
  if (block.empty()) return false;
  Row& above = transaction.edit().make({});
  transaction.edit().insert(above, *block.front()->parent(), block.front());
  placeAll(transaction, block, above, nullptr);
  transaction.editor().select(above, above);
  return true;
}

bool ungroup(Transaction& transaction) {
  const Row& row = transaction.editor().head();
  if (row.parent() == nullptr || row.firstChild() == nullptr) return false;
  const auto children = childrenOf(row);
  placeAll(transaction, children, *row.parent(), &row);
  transaction.editor().select(*children.front(), *children.back());
  transaction.edit().remove(row);
  return true;
}

bool reverse(Transaction& transaction) {
  const Row& parent = transaction.editor().head();
  auto children = childrenOf(parent);
  std::reverse(children.begin(), children.end());
  return arrange(transaction, parent, children);
}

}  // namespace

std::vector<Command> moveCommands() {
  // clang-format off
  return {
      {"row:block-move-down",          moveDown},
      {"row:block-move-to-bottom",     moveToBottom},
      {"row:block-move-to-top",        moveToTop},
      {"row:block-move-up",            moveUp},
      {"row:group",                    group},
      {"row:indent",                   indent},
      {"row:outdent",                  outdent},
      {"row:reverse-children",         reverse},
      {"row:sort-children-ascending",  [](Transaction& t) { return sortChildren(t, [](const Row* a, const Row* b) { return textOf(a) < textOf(b); }); }},
      {"row:sort-children-descending", [](Transaction& t) { return sortChildren(t, [](const Row* a, const Row* b) { return textOf(b) < textOf(a); }); }},
      {"row:ungroup",                  ungroup},
  };
  // clang-format on
}

}  // namespace vell::headless
