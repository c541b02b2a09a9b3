#include "headless/commands/block.h"
#include "headless/commands/commands.h"
#include "headless/editing/create_rows.h"

namespace vell::headless {
namespace {

bool insertNew(Transaction& transaction, const Row& parent, const Row* before) {
  Row& row = transaction.edit().make({});
  transaction.edit().insert(row, parent, before);
  transaction.editor().select(row, row);
  return true;
}

bool isDone(const Row& row) {
  const std::string* done = row.attributes().find("done");
  return done != nullptr && *done == "true";
}

/// `done` stands first, where the formats write it as the task's mark.
Attributes withDone(Attributes attributes, bool done) {
  attributes.remove("done");
  if (done) attributes.setFirst("done", "true");
  return attributes;
}

bool insertAbove(Transaction& transaction) {
  const Row& head = transaction.editor().head();
  if (head.parent() == nullptr) return insertNew(transaction, head, nullptr);
  return insertNew(transaction, *head.parent(), &head);
}

bool insertBelow(Transaction& transaction) {
  const Row& head = transaction.editor().head();
  if (head.parent() == nullptr) return insertNew(transaction, head, nullptr);
  return insertNew(transaction, *head.parent(), head.next());
}

bool insertChild(Transaction& transaction) {
  const Row& head = transaction.editor().head();
  transaction.editor().setCollapsed(head, false);
  return insertNew(transaction, head, nullptr);
}

bool duplicate(Transaction& transaction) {
  const auto block = selectedBlock(transaction);
  if (block.empty()) return false;
  const Row& last = *block.back();
  const Row* before = last.next();
  std::vector<const Row*> copies;
  for (const Row* row : block) {
    Row& copy = copyRow(transaction.edit(), *row, PersistentIds::left, copies);
    transaction.edit().insert(copy, *last.parent(), before);
  }
  transaction.editor().select(*copies.front(), *copies.back());
  return true;
}

bool deleteSelected(Transaction& transaction) {
  const auto block = selectedBlock(transaction);
  transaction.deselect(block);
  for (const Row* row : block) transaction.edit().remove(*row);
  return !block.empty();
}

bool joinWithNext(Transaction& transaction) {
  const Row& row = transaction.editor().head();
  const Row* next = row.parent() != nullptr ? row.next() : nullptr;
  if (next == nullptr || row.firstChild() != nullptr || !carriesText(row.type())) return false;
  Text joined = row.text();
  if (!joined.empty() && !next->text().empty()) joined.append(" ");
  joined.append(next->text());
  transaction.edit().setText(row, std::move(joined));
  while (next->firstChild() != nullptr) transaction.edit().place(*next->firstChild(), row, nullptr);
  transaction.edit().remove(*next);
  return true;
}

bool toggleDone(Transaction& transaction) {
  std::vector<const Row*> tasks;
  bool allDone = true;
  for (const Row* row : transaction.editor().selectedRows()) {
    if (row->type() != RowType::task) continue;
    tasks.push_back(row);
    allDone = allDone && isDone(*row);
  }
  for (const Row* row : tasks) transaction.edit().setAttributes(*row, withDone(row->attributes(), !allDone));
  return !tasks.empty();
}

}  // namespace

std::vector<Command> rowCommands() {
  // clang-format off
  return {
      {"edit:redo",          [](Transaction& t) { return t.redo(); }},
      {"edit:undo",          [](Transaction& t) { return t.undo(); }},
      {"row:delete",         deleteSelected},
      {"row:duplicate",      duplicate},
      {"row:insert-above",   insertAbove},
      {"row:insert-below",   insertBelow},
      {"row:insert-child",   insertChild},
      {"row:join-with-next", joinWithNext},
      {"row:toggle-done",    toggleDone},
  };
  // clang-format on
}

}  // namespace vell::headless
