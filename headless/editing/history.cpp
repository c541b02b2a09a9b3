#include "headless/editing/history.h"

namespace vell::headless {

void History::record(Edit& edit, EditorPlace before, Group group) {
  if (edit.empty()) return;
  for (const Step& step : redoSteps_) discardCreated(step);
  redoSteps_.clear();
  const bool follows = group != noGroup && !undoSteps_.empty() && undoSteps_.back().group == group;
  if (follows) return extend(undoSteps_.back(), edit);
  undoSteps_.push_back({edit.take(), std::move(before), editor_.place(), group});
  if (undoSteps_.size() > limit) undoSteps_.pop_front();
}

void History::extend(Step& step, Edit& edit) {
  for (Change& change : edit.take()) step.changes.push_back(std::move(change));
  step.after = editor_.place();
}

/// The next edit begins a step of its own.
void History::cutGroup() {
  if (!undoSteps_.empty()) undoSteps_.back().group = noGroup;
}

bool History::undo() {
  if (undoSteps_.empty()) return false;
  redoSteps_.push_back(std::move(undoSteps_.back()));
  undoSteps_.pop_back();
  headless::undo(outline_, redoSteps_.back().changes);
  editor_.restore(redoSteps_.back().before);
  cutGroup();
  return true;
}

bool History::redo() {
  if (redoSteps_.empty()) return false;
  undoSteps_.push_back(std::move(redoSteps_.back()));
  redoSteps_.pop_back();
  headless::redo(outline_, undoSteps_.back().changes);
  editor_.restore(undoSteps_.back().after);
  cutGroup();
  return true;
}

void History::clear() {
  undoSteps_.clear();
  redoSteps_.clear();
}

/// Frees the rows that an undone step had created: nothing can bring them back.
void History::discardCreated(const Step& step) {
  for (const Change& change : step.changes) {
    const auto* place = std::get_if<PlaceBefore>(&change);
    if (place != nullptr && place->creates) outline_.discard(*place->row);
  }
}

}  // namespace vell::headless
