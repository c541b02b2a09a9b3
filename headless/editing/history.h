#pragma once

#include <deque>
#include <vector>

#include "headless/editing/edit.h"
#include "headless/editing/editor.h"

namespace vell::headless {

/// The undo and redo steps of one outline.
class History {
 public:
  History(Outline& outline, Editor& editor) : outline_(outline), editor_(editor) {}

  /// Takes the edit's changes as one step, together with the editor's place before them. Drops the steps that
  /// could be redone. Without changes it does nothing.
  void record(Edit& edit, EditorPlace before);
  /// False where there is nothing to undo or redo.
  bool undo();
  bool redo();
  void clear();

  /// Edits recorded from now on until `endGroup` are one step; undo and redo begin a new one.
  void beginGroup();
  void endGroup() { group_ = Group::none; }

 private:
  enum class Group { none, empty, open };

  struct Step {
    std::vector<Change> changes;
    EditorPlace before;
    EditorPlace after;
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
  Group group_ = Group::none;
};

}  // namespace vell::headless
