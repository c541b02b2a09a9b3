#include "headless/editing/transaction.h"

#include <unordered_set>
#include <utility>

namespace vell::headless {
namespace {

using RowSet = std::unordered_set<const Row*>;

bool stands(const RowSet& leaving, const Row& row) {
  for (const Row* at = &row; at != nullptr; at = at->parent())
    if (leaving.count(at) != 0) return false;
  return true;
}

/// The sibling behind the leaving rows, else the one before them, else what is above.
const Row& nearest(const RowSet& leaving, const Row& row) {
  const Row* top = &row;
  for (const Row* at = &row; at != nullptr; at = at->parent())
    if (leaving.count(at) != 0) top = at;
  for (const Row* at = top->next(); at != nullptr; at = at->next())
    if (leaving.count(at) == 0) return *at;
  for (const Row* at = top->previous(); at != nullptr; at = at->previous())
    if (leaving.count(at) == 0) return *at;
  return *top->parent();
}

}  // namespace

Transaction::Transaction(Application& application, OpenOutline& opened)
    : application_(application),
      opened_(opened),
      edit_(opened.outline(), document::currentTime()),
      before_(opened.editor().place()) {}

Transaction::~Transaction() {
  if (committed_) return;
  edit_.rollBack();
  opened_.editor().restore(before_);
}

void Transaction::leave(const std::vector<const Row*>& rows) {
  const RowSet leaving(rows.begin(), rows.end());
  const Row& head = editor().head();
  if (head.parent() == nullptr || leaving.count(&outline().root()) != 0 ||
      (stands(leaving, head) && stands(leaving, editor().anchor())))
    return;
  const Row& next = stands(leaving, head) ? head : nearest(leaving, head);
  editor().select(next, next);
}

bool Transaction::undo() {
  closeStep();
  return opened_.history().undo();
}

bool Transaction::redo() {
  closeStep();
  return opened_.history().redo();
}

void Transaction::commit() {
  closeStep();
  committed_ = true;
  application_.changed(opened_);
}

void Transaction::closeStep() {
  opened_.history().record(edit_, std::exchange(before_, opened_.editor().place()));
}

}  // namespace vell::headless
