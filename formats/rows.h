#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "document/outline.h"

namespace vell::formats {

using document::Attribute;
using document::Attributes;
using document::Outline;
using document::Row;
using document::RowContent;
using document::RowType;
using document::Run;
using document::SessionId;
using document::SourceSpan;
using document::Text;
using document::Timestamp;

/// Whether a format keeps the times of rows.
enum class Times { kept, dropped };

/// Adds rows in document order by their depth.
class TreeBuilder {
 public:
  /// `eachRow`, if not null, is called with every row.
  TreeBuilder(Outline& outline, void (*eachRow)()) : outline_(outline), eachRow_(eachRow) {
    path_.push_back(&outline.root());
  }

  /// The depth that the next row can have at most; top level is 0.
  std::size_t maxDepth() const { return path_.size() - 1; }
  /// A persistent id that an earlier row has is dropped: ids are unique in an outline. Where the outline has
  /// a source the span says where in its text the row stands; its parent is filled in.
  Row& add(std::size_t depth, RowContent content, SourceSpan span = {});
  /// Before the first row, in formats where something encloses all rows: where that stands in the source.
  void addRoot(const SourceSpan& span);

 private:
  Outline& outline_;
  void (*const eachRow_)();
  std::vector<Row*> path_;  ///< the root, then the last row of each depth
};

/// True if this is what the row says. Times count where the format keeps them.
bool says(const Row& row, const RowContent& content, Times times);
/// True if the row says what it said when it was read.
bool isAsRead(const Outline& outline, const Row& row, Times times);

/// `tree` hangs each row below its nearest chosen ancestor, `flat` puts every row at top level.
enum class Shape { tree, flat };

/// A row to be written and how deep it stands there; top level is 0.
struct PlacedRow {
  const Row* row;
  std::uint32_t depth;
};

/// Rows in document order: a row's children follow it, one deeper.
using PlacedRows = std::vector<PlacedRow>;

/// Every row of the outline but the root.
PlacedRows placeAll(const Outline& outline, Shape shape = Shape::tree);
/// Some rows of the outline, given in any order; repeated ones count once. The root stands for itself: it is
/// written as a row of type "root" only when asked for by itself, so leave it out to get documents that can
/// be read back.
PlacedRows placeSome(const Outline& outline, const std::vector<const Row*>& rows, Shape shape = Shape::tree);

}  // namespace vell::formats
