#pragma once

#include <unordered_set>

#include "evaluation/context.h"
#include "headless/editing/editor.h"

namespace vell::headless {

/// Answers the path functions about the editor: its focus, folds and selection at the time of construction.
/// Filters and dragging exist only on a screen.
class EditorFunctions : public evaluation::EditorView {
 public:
  /// Both must outlive the object.
  EditorFunctions(const Outline& outline, const Editor& editor);
  evaluation::Value call(outline_path::EditorFunction function, const Row& row) const override;

 private:
  bool isInFocus(const Row& row) const;
  bool isBelowSelected(const Row& row) const;
  evaluation::Value focusedLevel(const Row& row) const;
  evaluation::Value selection(const Row& row) const;

  const Editor& editor_;
  const Row& focused_;
  std::unordered_set<const Row*> selected_;
  std::unordered_set<const Row*> aboveSelected_;
  std::uint32_t firstSelected_ = 0;  ///< its order
  std::uint32_t endOfSelected_ = 0;  ///< the end of all that are below them
};

}  // namespace vell::headless
