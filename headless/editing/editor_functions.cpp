#include "headless/editing/editor_functions.h"

#include <algorithm>
#include <limits>

namespace vell::headless {

EditorFunctions::EditorFunctions(const Outline& outline, const Editor& editor)
    : editor_(editor), focused_(editor.focused()) {
  outline.number();
  for (const Row* row : editor.selectedRows()) {
    if (selected_.empty()) firstSelected_ = row->order();
    endOfSelected_ = std::max(endOfSelected_, row->orderEnd());
    selected_.insert(row);
    for (const Row* above = row->parent(); above != nullptr && aboveSelected_.insert(above).second;) {
      above = above->parent();
    }
  }
}

evaluation::Value EditorFunctions::call(outline_path::EditorFunction function, const Row& row) const {
  using Function = outline_path::EditorFunction;
  const bool hasChildren = row.firstChild() != nullptr;
  switch (function) {
    case Function::focusedRoot:
      return &row == &focused_;
    case Function::focusedBranch:
      return isInFocus(row);
    case Function::focusedLevel:
      return focusedLevel(row);
    case Function::expanded:
      return hasChildren && !editor_.isCollapsed(row);
    case Function::collapsed:
      return !hasChildren || editor_.isCollapsed(row);
    case Function::filterMatch:
    case Function::filterMatchAncestor:
      return false;
    case Function::selection:
      return selection(row);
    case Function::selectionAncestor:
      return aboveSelected_.count(&row) != 0;
    case Function::selectionDescendant:
      return isBelowSelected(row);
    case Function::dropIndicator:
      break;
  }
  return {};
}

/// The selected rows stand side by side in document order.
bool EditorFunctions::isBelowSelected(const Row& row) const {
  if (selected_.empty() || row.order() <= firstSelected_) return false;
  return selected_.count(&row) != 0 ? row.parent()->order() >= firstSelected_ : row.order() < endOfSelected_;
}

bool EditorFunctions::isInFocus(const Row& row) const {
  return focused_.order() <= row.order() && row.order() < focused_.orderEnd();
}

evaluation::Value EditorFunctions::focusedLevel(const Row& row) const {
  if (!isInFocus(row)) return static_cast<double>(std::numeric_limits<std::int32_t>::max());
  return static_cast<double>(row.level() - focused_.level());
}

evaluation::Value EditorFunctions::selection(const Row& row) const {
  if (selected_.count(&row) == 0) return {};
  // Only whole rows are selected here, never part of a text.
  return std::string_view(selected_.size() == 1 ? "caret" : "block");
}

}  // namespace vell::headless
