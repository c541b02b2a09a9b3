#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "document/attributes.h"
#include "document/text.h"
#include "document/timestamp.h"

namespace vell::document {

enum class RowType : std::uint8_t { body, heading, task, note, quote, code, hr, ordered, unordered, root };

/// The types a row below the root can have, in the order in which messages list them.
inline constexpr std::array rowTypes = {RowType::body, RowType::heading, RowType::task,
                                        RowType::note, RowType::quote,   RowType::code,
                                        RowType::hr,   RowType::ordered, RowType::unordered};

/// "body", "heading", …
std::string_view name(RowType type);
/// The type of that name; none for unknown names and for "root".
std::optional<RowType> rowType(std::string_view name);

/// Names a row for the life of its outline; never given to a second row.
using SessionId = std::uint32_t;

/// One row. Its outline owns it and alone changes it; its address is stable as long as the outline lives. A
/// row taken out of the tree keeps its subtree, content and ids so that it can be put back.
class Row {
 public:
  Row() = default;
  Row(const Row&) = delete;
  Row& operator=(const Row&) = delete;

  SessionId id() const { return id_; }
  RowType type() const { return type_; }
  const Text& text() const { return text_; }
  const Attributes& attributes() const { return attributes_; }
  /// Empty when the row has none.
  const std::string& persistentId() const { return persistentId_; }
  Timestamp created() const { return created_; }
  Timestamp modified() const { return modified_; }

  /// Null for the root and for the top of what was taken out of the tree.
  const Row* parent() const { return parent_; }
  const Row* firstChild() const { return firstChild_; }
  const Row* lastChild() const { return lastChild_; }
  const Row* next() const { return next_; }
  const Row* previous() const { return previous_; }

  // The numbers below hold after Outline::number() until the structure next changes.

  /// Place in document order; the root is 0.
  std::uint32_t order() const { return order_; }
  /// One past the order of the last descendant: `a` contains `b` when a.order() < b.order() && b.order() <
  /// a.orderEnd().
  std::uint32_t orderEnd() const { return orderEnd_; }
  /// Place among the siblings, from 0.
  std::uint32_t index() const { return index_; }
  /// Ancestors it has: the root is 0, top-level rows are 1.
  std::uint32_t level() const { return level_; }

 private:
  friend class Outline;

  // What a walk over the tree reads comes first: one cache line.
  Row* parent_ = nullptr;
  Row* firstChild_ = nullptr;
  Row* lastChild_ = nullptr;
  Row* next_ = nullptr;
  Row* previous_ = nullptr;
  SessionId id_ = 0;
  mutable std::uint32_t order_ = 0;
  mutable std::uint32_t orderEnd_ = 0;
  mutable std::uint32_t index_ = 0;
  mutable std::uint32_t level_ = 0;
  RowType type_ = RowType::body;
  bool inTree_ = false;
  Attributes attributes_;
  Text text_;
  std::string persistentId_;
  Timestamp created_ = 0;
  Timestamp modified_ = 0;
};

std::vector<const Row*> childrenOf(const Row& parent);
/// The row after `row` in document order, not leaving the subtree of `top`; null at its end.
const Row* nextInOrder(const Row* row, const Row* top);
/// The row behind the whole subtree of `row`, not leaving the subtree of `top`.
const Row* nextAfterSubtree(const Row* row, const Row* top);
/// True if `ancestor` is above `row` (a row is not above itself). Works without numbering.
bool isAncestor(const Row& ancestor, const Row& row);

}  // namespace vell::document
