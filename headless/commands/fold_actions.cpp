#include "headless/commands/actions.h"
#include "headless/commands/block.h"

namespace vell::headless::actions {
namespace {

bool setAll(Transaction& transaction, const Row& top, bool collapsed) {
  bool changed = false;
  for (const Row* row = &top; row != nullptr; row = nextInOrder(row, &top))
    changed |= transaction.editor().setCollapsed(*row, collapsed);
  return changed;
}

bool setSelected(Transaction& transaction, bool collapsed) {
  bool changed = false;
  for (const Row* row : selectedBlock(transaction))
    changed |= transaction.editor().setCollapsed(*row, collapsed);
  return changed;
}

bool setBelowSelected(Transaction& transaction, bool collapsed) {
  bool changed = false;
  for (const Row* row : selectedBlock(transaction)) changed |= setAll(transaction, *row, collapsed);
  return changed;
}

}  // namespace

bool collapse(Transaction& transaction) { return setSelected(transaction, true); }

bool expand(Transaction& transaction) { return setSelected(transaction, false); }

bool toggleFold(Transaction& transaction) { return collapse(transaction) || expand(transaction); }

bool collapseAll(Transaction& transaction) { return setAll(transaction, transaction.outline().root(), true); }

bool expandAll(Transaction& transaction) { return setAll(transaction, transaction.outline().root(), false); }

bool collapseBelow(Transaction& transaction) { return setBelowSelected(transaction, true); }

bool expandBelow(Transaction& transaction) { return setBelowSelected(transaction, false); }

bool focusIn(Transaction& transaction) {
  Editor& editor = transaction.editor();
  const Row& head = editor.head();
  if (&head == &editor.focused()) return false;
  editor.focus(head);
  return true;
}

bool focusOut(Transaction& transaction) { return transaction.editor().focusOut(); }

bool focusHome(Transaction& transaction) {
  bool moved = false;
  while (transaction.editor().focusOut()) moved = true;
  return moved;
}

}  // namespace vell::headless::actions
