#include "headless/editing/history.h"

#include <iterator>

namespace vell::headless {

void History::record(Edit& edit, EditorPlace before, Group group) {
  if (edit.empty()) return;
  for (const Step& step : redoSteps_) discardCreated(outline_, step.changes);
  redoSteps_.clear();
  const bool follows = group != noGroup && !undoSteps_.empty() && undoSteps_.back().group == group &&
                       undoSteps_.back().bytes <= limits_.bytes;
  if (!follows) undoSteps_.push_back({{}, std::move(before), {}, group});
  extend(undoSteps_.back(), edit.take());
  while (undoSteps_.size() > 1 && (undoSteps_.size() > limits_.steps || undoBytes_ > limits_.bytes))
    dropOldest();
}

void History::extend(Step& step, std::vector<Change> changes) {
  const std::size_t bytes = bytesHeld(changes);
  step.bytes += bytes;
  undoBytes_ += bytes;
  step.changes.insert(step.changes.end(), std::make_move_iterator(changes.begin()),
                      std::make_move_iterator(changes.end()));
  step.after = editor_.place();
}

void History::dropOldest() {
  undoBytes_ -= undoSteps_.front().bytes;
  discardRemoved(outline_, undoSteps_.front().changes);
  undoSteps_.pop_front();
}

/// The next edit begins a step of its own.
void History::cutGroup() {
  if (!undoSteps_.empty()) undoSteps_.back().group = noGroup;
}

bool History::undo() {
  if (undoSteps_.empty()) return false;
  redoSteps_.push_back(std::move(undoSteps_.back()));
  undoSteps_.pop_back();
  undoBytes_ -= redoSteps_.back().bytes;
  headless::undo(outline_, redoSteps_.back().changes);
  editor_.restore(redoSteps_.back().before);
  cutGroup();
  return true;
}

bool History::redo() {
  if (redoSteps_.empty()) return false;
  undoSteps_.push_back(std::move(redoSteps_.back()));
  redoSteps_.pop_back();
  undoBytes_ += undoSteps_.back().bytes;
  headless::redo(outline_, undoSteps_.back().changes);
  editor_.restore(undoSteps_.back().after);
  cutGroup();
  return true;
}

std::pair<std::deque<History::Step>, std::vector<History::Step>> History::clear() {
  undoBytes_ = 0;
  return {std::exchange(undoSteps_, {}), std::exchange(redoSteps_, {})};
}

}  // namespace vell::headless
