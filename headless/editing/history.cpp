#include "headless/editing/history.h"

namespace vell::headless {

void History::record(Edit& edit, EditorPlace before) {
  if (edit.empty()) return;
  for (const Step& step : redoSteps_) discardCreated(step);
  redoSteps_.clear();
  if (group_ == Group::open) return extend(undoSteps_.back(), edit);
  undoSteps_.push_back({edit.take(), std::move(before), editor_.place()});
  if (undoSteps_.size() > limit) undoSteps_.pop_front();
  if (group_ == Group::empty) group_ = Group::open;
}

void History::extend(Step& step, Edit& edit) {
  for (Change& change : edit.take()) step.changes.push_back(std::move(change));
  step.after = editor_.place();
}

void History::beginGroup() { group_ = Group::empty; }

void History::cutGroup() {
  if (group_ == Group::open) group_ = Group::empty;
}

bool History::undo() {
  cutGroup();
  if (undoSteps_.empty()) return false;
  redoSteps_.push_back(std::move(undoSteps_.back()));
  undoSteps_.pop_back();
  headless::undo(outline_, redoSteps_.back().changes);
  editor_.restore(redoSteps_.back().before);
  return true;
}

bool History::redo() {
  cutGroup();
  if (redoSteps_.empty()) return false;
  undoSteps_.push_back(std::move(redoSteps_.back()));
  redoSteps_.pop_back();
  headless::redo(outline_, undoSteps_.back().changes);
  editor_.restore(undoSteps_.back().after);
  return true;
}

void History::clear() {
  undoSteps_.clear();
  redoSteps_.clear();
  cutGroup();
}

/// Frees the rows that an undone step had created: nothing can bring them back.
void History::discardCreated(const Step& step) {
  for (const Change& change : step.changes) {
    const auto* place = std::get_if<PlaceBefore>(&change);
    if (place != nullptr && place->creates) outline_.discard(*place->row);
  }
}

}  // namespace vell::headless
