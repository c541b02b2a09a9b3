#include "headless/editing/editor.h"

#include <algorithm>

#include "headless/editing/uuid.h"

namespace vell::headless {
namespace {

bool holds(const Row& ancestor, const Row& row) { return &ancestor == &row || isAncestor(ancestor, row); }

}  // namespace

Editor::Editor(const Outline& outline) : outline_(outline), id_(newUuid()) { reset(); }

void Editor::reset() {
  place_ = {{outline_.root().id()}, 0, 0};
  collapsed_.clear();
}

std::vector<const Row*> Editor::focusStack() const {
  std::vector<const Row*> stack;
  for (const SessionId id : place_.focus) {
    const Row* row = outline_.find(id);
    if (row != nullptr && (stack.empty() || isAncestor(*stack.back(), *row))) stack.push_back(row);
  }
  return stack;
}

void Editor::focus(const Row& row) {
  std::vector<SessionId> stack;
  for (const Row* focused : focusStack())
    if (isAncestor(*focused, row)) stack.push_back(focused->id());
  stack.push_back(row.id());
  place_.focus = std::move(stack);
  if (row.parent() == nullptr && !hasSelection()) return;
  if (isAncestor(row, head()) && isAncestor(row, anchor())) return;
  const Row& target = row.firstChild() != nullptr ? *row.firstChild() : row;
  place_.anchor = place_.head = target.id();
}

bool Editor::focusOut() {
  const auto stack = focusStack();
  if (stack.size() < 2) return false;
  place_.focus.assign(1, stack.front()->id());
  for (std::size_t i = 1; i + 1 < stack.size(); ++i) place_.focus.push_back(stack[i]->id());
  if (&head() == stack.back()) return true;
  place_.anchor = place_.head = stack.back()->id();
  return true;
}

const Row& Editor::selected(SessionId id) const {
  if (id == 0) return outline_.root();
  const Row* row = outline_.find(id);
  if (row != nullptr && row->parent() != nullptr) return *row;
  const Row& top = focused();
  if (top.firstChild() != nullptr) return *top.firstChild();
  return top;
}

std::vector<const Row*> Editor::selectedRows() const {
  outline_.number();
  const Row* first = &anchor();
  const Row* last = &head();
  if (first->order() > last->order()) std::swap(first, last);
  std::vector<const Row*> rows;
  const Row& root = outline_.root();
  for (const Row* row = first; row != nullptr && row->order() <= last->order(); row = nextInOrder(row, &root))
    if (row != &root) rows.push_back(row);
  return rows;
}

void Editor::select(const Row& anchor, const Row& head) {
  bringIntoFocus(anchor);
  bringIntoFocus(head);
  place_.anchor = anchor.id();
  place_.head = head.id();
}

void Editor::bringIntoFocus(const Row& row) {
  while (!holds(focused(), row)) focusOut();
}

bool Editor::setCollapsed(const Row& row, bool collapsed) {
  if (!collapsed) return collapsed_.erase(row.id()) != 0;
  if (row.firstChild() == nullptr || row.parent() == nullptr) return false;
  return collapsed_.insert(row.id()).second;
}

std::vector<const Row*> Editor::collapsedRows() const {
  std::vector<const Row*> rows;
  for (const SessionId id : collapsed_) {
    const Row* row = outline_.find(id);
    if (row != nullptr && row->firstChild() != nullptr) rows.push_back(row);
  }
  outline_.number();
  std::sort(rows.begin(), rows.end(), [](const Row* a, const Row* b) { return a->order() < b->order(); });
  return rows;
}

}  // namespace vell::headless
