#pragma once

#include <functional>
#include <vector>

#include "headless/editing/edit.h"
#include "headless/editing/editor.h"
#include "headless/editing/history.h"

namespace vell::headless {

/// The changes of one call to one outline: all of them or, unless committed, none; one undo step.
class Transaction {
 public:
  /// `committed` is called once the changes are kept; transactions of a group may share an undo step. The
  /// references must outlive the transaction.
  Transaction(Outline& outline, Editor& editor, History& history, std::function<void()> committed,
              History::Group group = History::noGroup);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  const Outline& outline() const { return edit_.outline(); }
  Editor& editor() { return editor_; }
  Edit& edit() { return edit_; }

  /// Moves the selection off rows that are about to be removed, to the nearest row that stays.
  void deselect(const std::vector<const Row*>& rows);

  /// Closes the changes so far as an undo step of their own, then undoes the step before or redoes the next.
  bool undo();
  bool redo();

  void commit();

 private:
  void closeStep();

  Editor& editor_;
  History& history_;
  Edit edit_;
  EditorPlace before_;
  std::function<void()> committed_;
  History::Group group_;
  bool open_ = true;
};

}  // namespace vell::headless
