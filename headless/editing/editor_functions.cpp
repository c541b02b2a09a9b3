#include "headless/editing/editor_functions.h"

#include <limits>

namespace vell::headless {

EditorFunctions::EditorFunctions(const Outline& outline, const Editor& editor)
    : editor_(editor), focused_(editor.focused()) {
  outline.number();
  for (const Row* row : editor.selectedRows()) {
    selected_.insert(row);
    for (const Row* above = row->parent(); above != nullptr && aboveSelected_.insert(above).second;) {
      above = above->parent();
    }
  }
}

std::optional<evaluation::Value> EditorFunctions::call(std::string_view function, const Row& row) const {
  const bool hasChildren = row.firstChild() != nullptr;
  if (function == "focused-root") return evaluation::Value(&row == &focused_);
  if (function == "focused-branch") return evaluation::Value(isInFocus(row));
  if (function == "focused-level") return focusedLevel(row);
  if (function == "expanded") return evaluation::Value(hasChildren && !editor_.isCollapsed(row));
  if (function == "collapsed") return evaluation::Value(!hasChildren || editor_.isCollapsed(row));
  if (function == "filter-match" || function == "filter-match-ancestor") return evaluation::Value(false);
  if (function == "selection") return selection(row);
  if (function == "selection-ancestor") return evaluation::Value(aboveSelected_.count(&row) != 0);
  if (function == "selection-descendant") {
    for (const Row* above = row.parent(); above != nullptr; above = above->parent()) {
      if (selected_.count(above) != 0) return evaluation::Value(true);
    }
    return evaluation::Value(false);
  }
  if (function == "drop-indicator") return evaluation::Value();
  return std::nullopt;
}

bool EditorFunctions::isInFocus(const Row& row) const {
  return &row == &focused_ || isAncestor(focused_, row);
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
