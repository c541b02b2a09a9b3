#pragma once

#include "headless/editing/transaction.h"

/// What the commands do, declared here for their table. Each returns false where it declined to act.
namespace vell::headless::actions {

bool undo(Transaction& transaction);
bool redo(Transaction& transaction);

bool collapse(Transaction& transaction);
bool expand(Transaction& transaction);
bool toggleFold(Transaction& transaction);
bool collapseAll(Transaction& transaction);
bool expandAll(Transaction& transaction);
bool expandBelow(Transaction& transaction);
bool collapseBelow(Transaction& transaction);
bool focusIn(Transaction& transaction);
bool focusOut(Transaction& transaction);
bool focusHome(Transaction& transaction);

bool setSelectedType(Transaction& transaction, RowType type);
template <RowType type>
bool format(Transaction& transaction) {
  return setSelectedType(transaction, type);
}
bool toggleStrong(Transaction& transaction);
bool toggleEm(Transaction& transaction);
bool toggleCode(Transaction& transaction);
bool toggleStrikethrough(Transaction& transaction);
bool toggleMark(Transaction& transaction);
bool clearStyles(Transaction& transaction);

bool moveUp(Transaction& transaction);
bool moveDown(Transaction& transaction);
bool moveToTop(Transaction& transaction);
bool moveToBottom(Transaction& transaction);
bool indent(Transaction& transaction);
bool outdent(Transaction& transaction);
bool group(Transaction& transaction);
bool ungroup(Transaction& transaction);
bool sortAscending(Transaction& transaction);
bool sortDescending(Transaction& transaction);
bool reverse(Transaction& transaction);

bool insertAbove(Transaction& transaction);
bool insertBelow(Transaction& transaction);
bool insertChild(Transaction& transaction);
bool duplicate(Transaction& transaction);
bool deleteSelected(Transaction& transaction);
bool joinWithNext(Transaction& transaction);
bool toggleDone(Transaction& transaction);

bool selectUp(Transaction& transaction);
bool selectDown(Transaction& transaction);
bool extendUp(Transaction& transaction);
bool extendDown(Transaction& transaction);
bool selectFirst(Transaction& transaction);
bool selectLast(Transaction& transaction);
bool selectParent(Transaction& transaction);
bool selectFirstChild(Transaction& transaction);
bool selectNextSibling(Transaction& transaction);
bool selectPreviousSibling(Transaction& transaction);
bool selectBranch(Transaction& transaction);
bool selectAll(Transaction& transaction);

}  // namespace vell::headless::actions
