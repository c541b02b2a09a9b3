#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "headless/document.h"

namespace vell::headless {

// Undo records: the former state of what one change replaced. Undo and redo swap it with the present state.

struct PlaceBefore {
  Row* row;
  Row* parent;  ///< null: outside the tree
  Row* next;    ///< null: last child
  // What the change does when it is made; neither: it moves the row.
  bool creates = false;
  bool removes = false;
};
struct ContentBefore {
  Row* row;
  RowType type;
  Text text;
  Attributes attributes;
  std::string persistentId;
  Timestamp modified;
};
using Change = std::variant<PlaceBefore, ContentBefore>;

/// Undoes the changes, the last one first; or makes undone changes again.
void undo(Outline& outline, std::vector<Change>& changes);
void redo(Outline& outline, std::vector<Change>& changes);
/// Frees the rows that these changes took out of the tree, or had put into it before they were undone. No
/// other change may be about to bring them back.
void discardRemoved(Outline& outline, const std::vector<Change>& changes);
void discardCreated(Outline& outline, const std::vector<Change>& changes);
/// What the changes hold while they can be undone: former content and removed rows.
std::size_t bytesHeld(const std::vector<Change>& changes);

struct NewRow {
  RowType type = RowType::body;
  Text text{};
  Attributes attributes{};
  std::string persistentId{};
};

/// Changes rows of one outline and records each change for undo. Sets `modified` where a row's own content
/// changes.
class Edit {
 public:
  Edit(Outline& outline, Timestamp now) : outline_(outline), now_(now) {}

  Outline& outline() const { return outline_; }
  Timestamp now() const { return now_; }

  /// Makes a new row outside the tree and takes its persistent id from the row that holds it.
  Row& make(NewRow content);
  /// Makes a new row the last child of another row outside the tree.
  void attach(Row& row, Row& parent) { outline_.insert(row, parent); }
  /// Puts a new row and its subtree below `parent`, before that child or last.
  void insert(Row& row, const Row& parent, const Row* before);
  /// Moves a row with its subtree, which must not contain `parent`.
  void place(const Row& row, const Row& parent, const Row* before);
  void remove(const Row& row);

  /// A type that carries no text clears it.
  void setType(const Row& row, RowType type);
  void setText(const Row& row, Text text);
  void setAttributes(const Row& row, Attributes attributes);
  /// "" removes it. Another row that holds the id loses it.
  void setPersistentId(const Row& row, std::string_view id);

  bool empty() const { return changes_.empty(); }
  /// The changes since the last call, in their order.
  std::vector<Change> take() { return std::exchange(changes_, {}); }
  /// Undoes the changes that were not taken.
  void rollBack();

 private:
  Row& recordContent(const Row& row);
  void release(std::string_view persistentId);

  Outline& outline_;
  Timestamp now_;
  std::vector<Change> changes_;
};

/// Whether rows of that type have text.
bool carriesText(RowType type);

}  // namespace vell::headless
