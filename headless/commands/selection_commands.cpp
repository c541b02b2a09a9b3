#include "headless/commands/block.h"
#include "headless/commands/commands.h"

namespace vell::headless {
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

bool selectAll(Transaction& transaction) {
  const Row& top = transaction.editor().focused();
  return top.firstChild() != nullptr && selectFromTo(transaction, *top.firstChild(), lastBelow(top));
}

}  // namespace

std::vector<Command> selectionCommands() {
  // clang-format off
  return {
      {"selection:all",              selectAll},
      {"selection:branch",           [](Transaction& t) { return selectFromTo(t, head(t), lastBelow(head(t))); }},
      {"selection:down",             [](Transaction& t) { return select(t, visibleBelow(t.editor(), head(t))); }},
      {"selection:extend-down",      [](Transaction& t) { return extend(t, visibleBelow(t.editor(), head(t))); }},
      {"selection:extend-up",        [](Transaction& t) { return extend(t, visibleAbove(t.editor(), head(t))); }},
      {"selection:first",            [](Transaction& t) { return select(t, t.editor().focused().firstChild()); }},
      {"selection:first-child",      [](Transaction& t) { return select(t, head(t).firstChild()); }},
      {"selection:last",             selectLast},
      {"selection:next-sibling",     [](Transaction& t) { return select(t, head(t).next()); }},
      {"selection:parent",           selectParent},
      {"selection:previous-sibling", [](Transaction& t) { return select(t, head(t).previous()); }},
      {"selection:up",               [](Transaction& t) { return select(t, visibleAbove(t.editor(), head(t))); }},
  };
  // clang-format on
}

}  // namespace vell::headless
