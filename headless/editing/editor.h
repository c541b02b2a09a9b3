#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "headless/document.h"

namespace vell::headless {

/// Where an editor stands, as undo restores it.
struct EditorPlace {
  /// The focus stack: from the root to the drilled-in row.
  std::vector<SessionId> focus;
  /// Both ends of the selection; 0 until something is selected.
  SessionId anchor;
  SessionId head;
};

/// The view of one outline: focus, folds and selection. It refers to rows by id: a removed row leaves the
/// folds, and focus and selection pass to a row nearby.
class Editor {
 public:
  /// The outline must outlive the editor.
  explicit Editor(const Outline& outline);

  const std::string& id() const { return id_; }

  /// Never empty: the root first, the drilled-in row last.
  std::vector<const Row*> focusStack() const;
  const Row& focused() const { return *focusStack().back(); }
  /// Drills into the row: on top of the stack where it lies below the focused row, else on the root.
  void focus(const Row& row);
  /// Back to the row focused before; false at the root.
  bool focusOut();

  /// Whether a row is selected; nothing is until `select` or `focus` is called.
  bool hasSelection() const { return head().parent() != nullptr; }
  /// The ends of the selection; the root where nothing is selected.
  const Row& anchor() const { return selected(place_.anchor); }
  const Row& head() const { return selected(place_.head); }
  /// Every row from one end to the other, in document order; empty where nothing can be selected.
  std::vector<const Row*> selectedRows() const;
  /// Drills out as far as needed for both rows to lie in the focused one; folds stay as they are.
  void select(const Row& anchor, const Row& head);

  bool isCollapsed(const Row& row) const { return collapsed_.count(row.id()) != 0; }
  /// True if that changed anything; rows without children cannot be collapsed.
  bool setCollapsed(const Row& row, bool collapsed);
  /// In document order.
  std::vector<const Row*> collapsedRows() const;

  const EditorPlace& place() const { return place_; }
  /// Forgets focus, folds and selection.
  void reset();
  void restore(EditorPlace place) { place_ = std::move(place); }

 private:
  const Row& selected(SessionId id) const;
  void bringIntoFocus(const Row& row);

  const Outline& outline_;
  std::string id_;
  EditorPlace place_;
  std::unordered_set<SessionId> collapsed_;
};

}  // namespace vell::headless
