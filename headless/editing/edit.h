#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "headless/document.h"

namespace vell::headless {

/// What one move changed, as it was before; swapped with what is, it takes the move back or makes it again.
struct PlaceBefore {
  Row* row;
  Row* parent;  ///< null: outside the tree
  Row* next;    ///< null: last child
  bool creates = false;
};
struct TypeBefore {
  Row* row;
  RowType type;
};
struct TextBefore {
  Row* row;
  Text text;
};
struct AttributesBefore {
  Row* row;
  Attributes attributes;
};
struct PersistentIdBefore {
  Row* row;
  std::string id;
};
struct TimesBefore {
  Row* row;
  Timestamp created;
  Timestamp modified;
};
using Move =
    std::variant<PlaceBefore, TypeBefore, TextBefore, AttributesBefore, PersistentIdBefore, TimesBefore>;

struct NewRow {
  RowType type = RowType::body;
  Text text{};
  Attributes attributes{};
  std::string persistentId{};
};

/// Every change of rows that people and programs make goes through here, so that it can be taken back. Sets
/// `modified` where a row's own content changes. Rows are of the outline that the edit was made for.
class Edit {
 public:
  Edit(Outline& outline, Timestamp now) : outline_(outline), now_(now) {}

  Outline& outline() const { return outline_; }
  Timestamp now() const { return now_; }

  /// A new row outside the tree; a row that holds its persistent id loses it.
  Row& make(NewRow content);
  /// Puts a new row below another one that is not in the tree yet either, as its last child.
  void attach(Row& row, Row& parent) { outline_.insert(row, parent); }
  /// Puts a new row, with what was attached to it, below `parent`, before that child or last.
  void insert(Row& row, const Row& parent, const Row* before);
  /// Moves a row with its subtree, which must not contain `parent`.
  void place(const Row& row, const Row& parent, const Row* before);
  void remove(const Row& row);

  /// A type that carries no text clears it.
  void setType(const Row& row, RowType type);
  void setText(const Row& row, Text text);
  void setAttributes(const Row& row, Attributes attributes);
  /// "" removes it; another row that holds it loses it.
  void setPersistentId(const Row& row, std::string_view id);
  bool empty() const { return moves_.empty(); }
  /// The moves made since the last call, in their order.
  std::vector<Move> take() { return std::exchange(moves_, {}); }
  /// Takes back what was not taken.
  void rollBack();

 private:
  void touch(const Row& row);
  void release(std::string_view persistentId);

  Outline& outline_;
  Timestamp now_;
  std::vector<Move> moves_;
};

/// Takes the moves back, or makes them again if they were taken back.
void swapBack(Outline& outline, std::vector<Move>& moves);
void swapForth(Outline& outline, std::vector<Move>& moves);

/// Whether rows of that type have text.
bool carriesText(RowType type);

}  // namespace vell::headless
