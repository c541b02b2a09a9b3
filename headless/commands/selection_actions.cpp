#include "headless/commands/actions.h"
#include "headless/commands/block.h"

namespace vell::headless::actions {
namespace {

bool select(Transaction& transaction, const Row* row) {
  Editor& editor = transaction.editor();
  if (row == nullptr || row->parent() == nullptr) return false;
  if (row == &editor.head() && row == &editor.anchor()) return false;
  editor.select(*row, *row);
  return true;
}

bool extend(Transaction& transaction, const Row* row) {
  if (row == nullptr || row->parent() == nullptr) return false;
  transaction.editor().select(transaction.editor().anchor(), *row);
  return true;
}

const Row& head(Transaction& transaction) { return transaction.editor().head(); }

/// The last row that is in the subtree.
const Row& lastBelow(const Row& top) {
  const Row* row = &top;
  while (row->lastChild() != nullptr) row = row->lastChild();
  return *row;
}

bool selectFromTo(Transaction& transaction, const Row& anchor, const Row& last) {
  Editor& editor = transaction.editor();
  if (anchor.parent() == nullptr || (&anchor == &editor.anchor() && &last == &editor.head())) return false;
  editor.select(anchor, last);
  return true;
}

}  // namespace

bool selectUp(Transaction& transaction) {
  return select(transaction, seenAbove(transaction.editor(), head(transaction)));
}
bool selectDown(Transaction& transaction) {
  return select(transaction, seenBelow(transaction.editor(), head(transaction)));
}
bool extendUp(Transaction& transaction) {
  return extend(transaction, seenAbove(transaction.editor(), head(transaction)));
}
bool extendDown(Transaction& transaction) {
  return extend(transaction, seenBelow(transaction.editor(), head(transaction)));
}
bool selectFirst(Transaction& transaction) {
  return select(transaction, transaction.editor().focused().firstChild());
}
bool selectLast(Transaction& transaction) {
  const Row& top = transaction.editor().focused();
  const Row* row = &top;
  for (const Row* last = top.lastChild(); last != nullptr; last = last->lastChild()) {
    row = last;
    if (transaction.editor().isCollapsed(*last)) break;
  }
  return select(transaction, row);
}
bool selectParent(Transaction& transaction) {
  const bool isTop = &head(transaction) == &transaction.editor().focused();
  return !isTop && select(transaction, head(transaction).parent());
}
bool selectFirstChild(Transaction& transaction) {
  return select(transaction, head(transaction).firstChild());
}
bool selectNextSibling(Transaction& transaction) { return select(transaction, head(transaction).next()); }
bool selectPreviousSibling(Transaction& transaction) {
  return select(transaction, head(transaction).previous());
}

bool selectBranch(Transaction& transaction) {
  return selectFromTo(transaction, head(transaction), lastBelow(head(transaction)));
}

bool selectAll(Transaction& transaction) {
  const Row& top = transaction.editor().focused();
  return top.firstChild() != nullptr && selectFromTo(transaction, *top.firstChild(), lastBelow(top));
}

}  // namespace vell::headless::actions
