#pragma once

#include <deque>
#include <vector>

#include "headless/editing/edit.h"
#include "headless/editing/editor.h"

namespace vell::headless {

/// What was done to an outline and can be taken back, a step at a time.
class History {
 public:
  History(Outline& outline, Editor& editor) : outline_(outline), editor_(editor) {}

  /// Keeps the edit's moves as one step, with where the editor stood before; nothing where there are none.
  /// What was taken back before can no longer be made again.
  void record(Edit& edit, EditorPlace before);
  /// False where there is nothing to take back or to make again.
  bool undo();
  bool redo();
  void clear();

  /// Edits recorded from now on until `endGroup` are one step, cut where something is taken back or made
  /// again.
  void beginGroup();
  void endGroup() { group_ = Group::none; }

 private:
  enum class Group { none, empty, open };

  struct Step {
    std::vector<Move> moves;
    EditorPlace before;
    EditorPlace after;
  };

  void discardCreated(const Step& step);
  void extend(Step& step, Edit& edit);
  void cutGroup();

  /// Steps beyond this cannot be taken back.
  static constexpr std::size_t limit = 1000;

  Outline& outline_;
  Editor& editor_;
  std::deque<Step> done_;
  std::vector<Step> undone_;
  Group group_ = Group::none;
};

}  // namespace vell::headless
