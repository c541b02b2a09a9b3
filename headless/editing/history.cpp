#include "headless/editing/history.h"

namespace vell::headless {

void History::record(Edit& edit, EditorPlace before) {
  if (edit.empty()) return;
  for (const Step& step : undone_) discardCreated(step);
  undone_.clear();
  if (group_ == Group::open) return extend(done_.back(), edit);
  done_.push_back({edit.take(), std::move(before), editor_.place()});
  if (done_.size() > limit) done_.pop_front();
  if (group_ == Group::empty) group_ = Group::open;
}

void History::extend(Step& step, Edit& edit) {
  for (Move& move : edit.take()) step.moves.push_back(std::move(move));
  step.after = editor_.place();
}

void History::beginGroup() { group_ = Group::empty; }

void History::cutGroup() {
  if (group_ == Group::open) group_ = Group::empty;
}

bool History::undo() {
  cutGroup();
  if (done_.empty()) return false;
  undone_.push_back(std::move(done_.back()));
  done_.pop_back();
  swapBack(outline_, undone_.back().moves);
  editor_.restore(undone_.back().before);
  return true;
}

bool History::redo() {
  cutGroup();
  if (undone_.empty()) return false;
  done_.push_back(std::move(undone_.back()));
  undone_.pop_back();
  swapForth(outline_, done_.back().moves);
  editor_.restore(done_.back().after);
  return true;
}

void History::clear() {
  done_.clear();
  undone_.clear();
  cutGroup();
}

/// Rows made by a step that was taken back will never be seen again.
void History::discardCreated(const Step& step) {
  for (const Move& move : step.moves) {
    const auto* place = std::get_if<PlaceBefore>(&move);
    if (place != nullptr && place->creates) outline_.discard(*place->row);
  }
}

}  // namespace vell::headless
