#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "formats/document.h"

namespace vell::formats {

/// What a reader knows about a row.
struct RowContent {
  RowType type = RowType::body;
  Text text;
  Attributes attributes;
  std::string persistentId;  ///< empty: none
  Timestamp created = 0;
  Timestamp modified = 0;
};

/// Adds rows in document order by their depth.
class TreeBuilder {
 public:
  explicit TreeBuilder(Outline& outline) : outline_(outline) { path_.push_back(&outline.root()); }

  /// The depth that the next row can have at most; top level is 0.
  std::size_t maxDepth() const { return path_.size() - 1; }
  /// A persistent id that an earlier row has is dropped: ids are unique in an outline.
  Row& add(std::size_t depth, RowContent content);

 private:
  Outline& outline_;
  std::vector<Row*> path_;  ///< the root, then the last row of each depth
};

}  // namespace vell::formats
