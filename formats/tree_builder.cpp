#include "formats/tree_builder.h"

namespace vell::formats {

Row& TreeBuilder::add(std::size_t depth, RowContent content) {
  path_.resize(depth + 1);
  Row* row = outline_.create(content.type, std::move(content.text), content.created);
  outline_.setTimes(*row, content.created, content.modified);
  if (!content.attributes.empty()) outline_.setAttributes(*row, std::move(content.attributes));
  outline_.setPersistentId(*row, content.persistentId);
  outline_.insert(*row, *path_.back());
  path_.push_back(row);
  return *row;
}

}  // namespace vell::formats
