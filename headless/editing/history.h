#pragma once

#include <cstdint>
#include <deque>
#include <utility>
#include <vector>

#include "headless/editing/edit.h"
#include "headless/editing/editor.h"

namespace vell::headless {

/// What can be undone in one outline. The oldest steps are dropped first; the latest one stays.
struct HistoryLimits {
  std::size_t steps = 1'000;
  std::size_t bytes = std::size_t{64} << 20;  ///< of former content and removed rows
};

/// The undo and redo steps of one outline. Rows that no step can bring back are freed.
class History {
 public:
  History(Outline& outline, Editor& editor, HistoryLimits limits = {})
      : outline_(outline), editor_(editor), limits_(limits) {}

  /// Edits of the same group that follow each other are one step, where nobody undid or redid in between and
  /// the step holds no more than the history may.
  using Group = std::uint64_t;
  static constexpr Group noGroup = 0;

  /// Takes the edit's changes as one step, together with the editor's place before them. Drops the steps that
  /// could be redone. Without changes it does nothing.
  void record(Edit& edit, EditorPlace before, Group group = noGroup);
  /// False where there is nothing to undo or redo.
  bool undo();
  bool redo();

  struct Step {
    std::vector<Change> changes;
    EditorPlace before;
    EditorPlace after;
    Group group = noGroup;
    std::size_t bytes = 0;  ///< held while the step can be undone
  };
  /// Ends the history. What it held is the caller's, to be freed.
  std::pair<std::deque<Step>, std::vector<Step>> clear();

 private:
  void extend(Step& step, std::vector<Change> changes);
  void dropOldest();
  void cutGroup();

  Outline& outline_;
  Editor& editor_;
  HistoryLimits limits_;
  std::deque<Step> undoSteps_;
  std::size_t undoBytes_ = 0;
  std::vector<Step> redoSteps_;
};

}  // namespace vell::headless
