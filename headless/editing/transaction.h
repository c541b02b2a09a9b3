#pragma once

#include <vector>

#include "headless/editing/edit.h"
#include "headless/storage/application.h"

namespace vell::headless {

/// The changes of one call to one outline: all of them or, unless committed, none; one step to undo.
class Transaction {
 public:
  /// Both must outlive the transaction.
  Transaction(Application& application, OpenOutline& opened);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  const Outline& outline() const { return opened_.outline(); }
  Editor& editor() { return opened_.editor(); }
  Edit& edit() { return edit_; }
  RowRefs refs() const { return application_.refs(opened_); }

  /// Moves the selection off rows that are about to be removed, to what is nearest.
  void leave(const std::vector<const Row*>& rows);

  /// Takes back the step before this transaction, after closing what was changed so far as a step of its own.
  bool undo();
  bool redo();

  /// Keeps the changes, has them saved and tells whoever observes.
  void commit();

 private:
  void closeStep();

  Application& application_;
  OpenOutline& opened_;
  Edit edit_;
  EditorPlace before_;
  bool committed_ = false;
};

}  // namespace vell::headless
