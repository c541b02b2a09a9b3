#include "document/outline.h"

#include <limits>
#include <stdexcept>

namespace vell::document {

Outline::Outline(SessionId firstId) : firstId_(firstId) {
  root_ = rows_.emplace_back(std::make_unique<Row>()).get();
  root_->id_ = rootId;
  root_->type_ = RowType::root;
  root_->inTree_ = true;
}

void Outline::exchangeWith(Outline& other) {
  const std::uint64_t revision = revision_;
  Outline former(std::move(*this));
  *this = std::move(other);
  other = std::move(former);
  revision_ += revision + 1;
}

Row* Outline::find(SessionId id) {
  if (id != rootId && (id < firstId_ || id >= nextId())) return nullptr;
  Row* row = rowOf(id).get();
  return row && row->inTree_ ? row : nullptr;
}

const Row* Outline::find(SessionId id) const { return const_cast<Outline*>(this)->find(id); }

Row* Outline::findPersistent(std::string_view id) {
  const auto found = persistentIds_.find(id);
  return found != persistentIds_.end() ? found->second : nullptr;
}

const Row* Outline::findPersistent(std::string_view id) const {
  return const_cast<Outline*>(this)->findPersistent(id);
}

Row* Outline::create(RowType type, Text text, Timestamp created) {
  const SessionId id = nextId();
  if (id == std::numeric_limits<SessionId>::max())
    throw std::length_error("the outline has used up its row ids");
  Row& row = *rows_.emplace_back(std::make_unique<Row>());
  ++heldRows_;
  row.id_ = id;
  row.type_ = type;
  row.text_ = std::move(text);
  row.created_ = row.modified_ = created;
  return &row;
}

void Outline::insert(Row& row, Row& parent, Row* before) {
  row.parent_ = &parent;
  row.next_ = before;
  row.previous_ = before ? before->previous_ : parent.lastChild_;
  (row.previous_ ? row.previous_->next_ : parent.firstChild_) = &row;
  (before ? before->previous_ : parent.lastChild_) = &row;
  if (parent.inTree_) enterTree(row);
  structureChanged();
}

void Outline::remove(Row& row) {
  Row& parent = *row.parent_;
  (row.previous_ ? row.previous_->next_ : parent.firstChild_) = row.next_;
  (row.next_ ? row.next_->previous_ : parent.lastChild_) = row.previous_;
  row.parent_ = row.previous_ = row.next_ = nullptr;
  if (row.inTree_) leaveTree(row);
  structureChanged();
}

void Outline::enterTree(Row& top) {
  for (const Row* at = &top; at; at = nextInOrder(at, &top)) {
    Row& row = mutableRow(*at);
    row.inTree_ = true;
    ++rowCount_;
    if (row.persistentId_.empty()) continue;
    if (!persistentIds_.emplace(row.persistentId_, &row).second) row.persistentId_.clear();
  }
}

void Outline::leaveTree(Row& top) {
  for (const Row* at = &top; at; at = nextInOrder(at, &top)) {
    Row& row = mutableRow(*at);
    row.inTree_ = false;
    --rowCount_;
    persistentIds_.erase(row.persistentId_);
  }
}

void Outline::discard(SessionId id) {
  const Row* top = rowOf(id).get();
  std::vector<SessionId> freed;
  for (const Row* row = top; row; row = nextInOrder(row, top)) freed.push_back(row->id_);
  for (const SessionId row : freed) {
    rowOf(row).reset();
    if (source_) source_->forget(row);
  }
  heldRows_ -= freed.size();
}

void Outline::structureChanged() {
  numbering_.valid = false;
  ++revision_;
}

void Outline::contentChanges(const Row& row) {
  if (source_) source_->keepOriginal(row);
  ++revision_;
}

void Outline::setType(Row& row, RowType type) {
  contentChanges(row);
  row.type_ = type;
}

void Outline::setText(Row& row, Text text) {
  contentChanges(row);
  row.text_ = std::move(text);
}

void Outline::setAttributes(Row& row, Attributes attributes) {
  contentChanges(row);
  row.attributes_ = std::move(attributes);
}

void Outline::setPersistentId(Row& row, std::string_view id) {
  contentChanges(row);
  if (row.inTree_) persistentIds_.erase(row.persistentId_);
  row.persistentId_ = id;
  if (row.inTree_ && !id.empty()) persistentIds_.emplace(row.persistentId_, &row);
}

void Outline::setTimes(Row& row, Timestamp created, Timestamp modified) {
  contentChanges(row);
  row.created_ = created;
  row.modified_ = modified;
}

void Outline::number() const {
  if (numbering_.valid) return;
  const std::lock_guard lock(numbering_.mutex);
  if (numbering_.valid) return;
  rowsInOrder_.resize(rowCount_ + 1);
  std::uint32_t order = 0;
  const Row* row = root_;
  while (row) {
    rowsInOrder_[order] = row;
    row->order_ = order++;
    row->level_ = row->parent_ ? row->parent_->level_ + 1 : 0;
    row->index_ = row->previous_ ? row->previous_->index_ + 1 : 0;
    if (row->firstChild_) {
      row = row->firstChild_;
      continue;
    }
    row->orderEnd_ = order;
    while (row && !row->next_) {
      row = row->parent_;
      if (row) row->orderEnd_ = order;
    }
    if (row) row = row->next_;
  }
  numbering_.valid = true;
}

}  // namespace vell::document
