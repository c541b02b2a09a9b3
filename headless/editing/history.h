#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "headless/editing/edit.h"
#include "headless/editing/editor.h"

namespace vell::headless {

/// The undo and redo steps of one outline.
class History {
 public:
  History(Outline& outline, Editor& editor) : outline_(outline), editor_(editor) {}

  /// Edits of the same group that follow each other are one step, where nobody undid or redid in between.
  using Group = std::uint64_t;
  static constexpr Group noGroup = 0;

  /// Takes the edit's changes as one step, together with the editor's place before them. Drops the steps that
  /// could be redone. Without changes it does nothing.
  void record(Edit& edit, EditorPlace before, Group group = noGroup);
  /// False where there is nothing to undo or redo.
  bool undo();
  bool redo();
  void clear();

 private:
  struct Step {
    std::vector<Change> changes;
    EditorPlace before;
    EditorPlace after;
    Group group = noGroup;
  };

  void discardCreated(const Step& step);
  void extend(Step& step, Edit& edit);
  void cutGroup();

  /// Steps that can be undone; older ones are dropped.
  static constexpr std::size_t limit = 1000;

  Outline& outline_;
  Editor& editor_;
  std::deque<Step> undoSteps_;
  std::vector<Step> redoSteps_;
};

}  // namespace vell::headless
