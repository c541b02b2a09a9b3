#include "headless/commands/block.h"
#include "headless/commands/commands.h"

namespace vell::headless {
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

bool focusIn(Transaction& transaction) {
  Editor& editor = transaction.editor();
  const Row& head = editor.head();
  if (&head == &editor.focused()) return false;
  editor.focus(head);
  return true;
}

bool focusHome(Transaction& transaction) {
  bool moved = false;
  while (transaction.editor().focusOut()) moved = true;
  return moved;
}

}  // namespace

std::vector<Command> foldCommands() {
  // clang-format off
  return {
      {"focus:home",               focusHome},
      {"focus:in",                 focusIn},
      {"focus:out",                [](Transaction& t) { return t.editor().focusOut(); }},
      {"fold:collapse",            [](Transaction& t) { return setSelected(t, true); }},
      {"fold:collapse-all",        [](Transaction& t) { return setAll(t, t.outline().root(), true); }},
      {"fold:collapse-completely", [](Transaction& t) { return setBelowSelected(t, true); }},
      {"fold:expand",              [](Transaction& t) { return setSelected(t, false); }},
      {"fold:expand-all",          [](Transaction& t) { return setAll(t, t.outline().root(), false); }},
      {"fold:expand-completely",   [](Transaction& t) { return setBelowSelected(t, false); }},
      {"fold:toggle",              [](Transaction& t) { return setSelected(t, true) || setSelected(t, false); }},
  };
  // clang-format on
}

}  // namespace vell::headless
