#include "headless/editing/transaction.h"

#include <unordered_set>
#include <utility>

#include "headless/access.h"

namespace vell::headless {
namespace {

using RowSet = std::unordered_set<const Row*>;

bool stays(const RowSet& leaving, const Row& row) {
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

Transaction::Transaction(Outline& outline, Editor& editor, History& history, std::function<void()> committed,
                         History::Group group)
    : editor_(editor),
      history_(history),
      edit_(outline, document::currentTime()),
      before_(editor.place()),
      committed_(std::move(committed)),
      group_(group) {}

Transaction::~Transaction() {
  if (!open_) return;
  beside([this] { edit_.rollBack(); });
  editor_.restore(before_);
}

void Transaction::deselect(const std::vector<const Row*>& rows) {
  const RowSet leaving(rows.begin(), rows.end());
  const Row& head = editor_.head();
  if (head.parent() == nullptr || leaving.count(&outline().root()) != 0 ||
      (stays(leaving, head) && stays(leaving, editor_.anchor())))
    return;
  const Row& next = stays(leaving, head) ? head : nearest(leaving, head);
  editor_.select(next, next);
}

bool Transaction::undo() {
  closeStep();
  return history_.undo();
}

bool Transaction::redo() {
  closeStep();
  return history_.redo();
}

void Transaction::commit() {
  beside([this] { closeStep(); });
  open_ = false;
  committed_();
}

void Transaction::closeStep() { history_.record(edit_, std::exchange(before_, editor_.place()), group_); }

}  // namespace vell::headless
