#include "formats/rows.h"

#include <algorithm>

namespace vell::formats {

Row& TreeBuilder::add(std::size_t depth, RowContent content, SourceSpan span) {
  if (eachRow_ != nullptr) eachRow_();
  path_.resize(depth + 1);
  Row* row = outline_.create(content.type, std::move(content.text), content.created);
  outline_.setTimes(*row, content.created, content.modified);
  if (!content.attributes.empty()) outline_.setAttributes(*row, std::move(content.attributes));
  outline_.setPersistentId(*row, content.persistentId);
  outline_.insert(*row, *path_.back());
  if (document::Source* source = outline_.source()) {
    span.parent = path_.back()->id();
    source->add(*row, span);
  }
  path_.push_back(row);
  return *row;
}

void TreeBuilder::addRoot(const SourceSpan& span) {
  if (document::Source* source = outline_.source()) source->add(outline_.root(), span);
}

bool says(const Row& row, const RowContent& content, Times times) {
  const bool sameTimes =
      times == Times::dropped || (content.created == row.created() && content.modified == row.modified());
  return sameTimes && content.type == row.type() && content.text == row.text() &&
         content.attributes == row.attributes() && content.persistentId == row.persistentId();
}

bool isAsRead(const Outline& outline, const Row& row, Times times) {
  const document::Source* source = outline.source();
  if (!source || !source->find(row.id())) return false;
  const RowContent* read = source->original(row.id());
  return !read || says(row, *read, times);
}

PlacedRows placeAll(const Outline& outline, Shape shape) {
  PlacedRows placed;
  placed.reserve(outline.rowCount());
  outline.number();
  const Row* root = &outline.root();
  for (const Row* row = root->firstChild(); row; row = nextInOrder(row, root)) {
    placed.push_back({row, shape == Shape::tree ? row->level() - 1 : 0});
  }
  return placed;
}

PlacedRows placeSome(const Outline& outline, const std::vector<const Row*>& rows, Shape shape) {
  outline.number();
  PlacedRows placed;
  placed.reserve(rows.size());
  for (const Row* row : rows) placed.push_back({row, 0});
  std::sort(placed.begin(), placed.end(), [](const PlacedRow& left, const PlacedRow& right) {
    return left.row->order() < right.row->order();
  });
  const auto same = [](const PlacedRow& left, const PlacedRow& right) { return left.row == right.row; };
  placed.erase(std::unique(placed.begin(), placed.end(), same), placed.end());
  if (shape == Shape::flat) return placed;
  std::vector<std::uint32_t> openUntil;
  for (PlacedRow& entry : placed) {
    while (!openUntil.empty() && openUntil.back() <= entry.row->order()) openUntil.pop_back();
    entry.depth = static_cast<std::uint32_t>(openUntil.size());
    openUntil.push_back(entry.row->orderEnd());
  }
  return placed;
}

}  // namespace vell::formats
