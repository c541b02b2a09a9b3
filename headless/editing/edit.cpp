#include "headless/editing/edit.h"

namespace vell::headless {
namespace {

PlaceBefore placeOf(Outline& outline, Row& row) {
  Row* parent = row.parent() != nullptr ? &outline.mutableRow(*row.parent()) : nullptr;
  Row* next = row.next() != nullptr ? &outline.mutableRow(*row.next()) : nullptr;
  return {&row, parent, next};
}

std::size_t bytesOf(const Attributes& attributes) {
  std::size_t bytes = 0;
  for (const auto& [key, value] : attributes) bytes += sizeof(Attribute) + key.size() + value.size();
  return bytes;
}

std::size_t bytesOf(const Text& text) {
  std::size_t bytes = 0;
  text.forEachRun(
      [&](std::string_view string, const Attributes& attrs) { bytes += string.size() + bytesOf(attrs); });
  return bytes;
}

/// What a change holds while it can be undone.
struct BytesHeld {
  std::size_t operator()(const PlaceBefore& change) const {
    std::size_t bytes = sizeof(Change);
    if (!change.removes) return bytes;
    for (const Row* row = change.row; row != nullptr; row = nextInOrder(row, change.row))
      bytes += bytesOf(row->text()) + bytesOf(row->attributes()) + row->persistentId().size();
    return bytes;
  }
  std::size_t operator()(const ContentBefore& change) const {
    return sizeof(Change) + bytesOf(change.text) + bytesOf(change.attributes) + change.persistentId.size();
  }
};

/// All are found before any is freed, as one may lie below another.
void discard(Outline& outline, const std::vector<Change>& changes, bool PlaceBefore::*which) {
  std::vector<SessionId> gone;
  for (const Change& change : changes) {
    const auto* place = std::get_if<PlaceBefore>(&change);
    if (place != nullptr && place->*which && outline.find(place->row->id()) == nullptr)
      gone.push_back(place->row->id());
  }
  for (const SessionId row : gone) outline.discard(row);
}

ContentBefore contentOf(Row& row) {
  return {&row, row.type(), row.text(), row.attributes(), row.persistentId(), row.modified()};
}

/// Swaps what a change holds with the present state.
struct Swap {
  Outline& outline;

  void operator()(PlaceBefore& change) const {
    const PlaceBefore now = placeOf(outline, *change.row);
    if (now.parent != nullptr) outline.remove(*change.row);
    if (change.parent != nullptr) outline.insert(*change.row, *change.parent, change.next);
    change.parent = now.parent;
    change.next = now.next;
  }
  void operator()(ContentBefore& change) const {
    Row& row = *change.row;
    ContentBefore now = contentOf(row);
    outline.setType(row, change.type);
    outline.setText(row, std::move(change.text));
    outline.setAttributes(row, std::move(change.attributes));
    outline.setPersistentId(row, change.persistentId);
    outline.setTimes(row, row.created(), change.modified);
    change = std::move(now);
  }
};

}  // namespace

void undo(Outline& outline, std::vector<Change>& changes) {
  for (auto change = changes.rbegin(); change != changes.rend(); ++change) std::visit(Swap{outline}, *change);
}

void redo(Outline& outline, std::vector<Change>& changes) {
  for (Change& change : changes) std::visit(Swap{outline}, change);
}

void discardRemoved(Outline& outline, const std::vector<Change>& changes) {
  discard(outline, changes, &PlaceBefore::removes);
}

void discardCreated(Outline& outline, const std::vector<Change>& changes) {
  discard(outline, changes, &PlaceBefore::creates);
}

std::size_t bytesHeld(const std::vector<Change>& changes) {
  std::size_t bytes = 0;
  for (const Change& change : changes) bytes += std::visit(BytesHeld(), change);
  return bytes;
}

Row& Edit::make(NewRow content) {
  release(content.persistentId);
  Row& row = *outline_.create(content.type, std::move(content.text), now_);
  outline_.setAttributes(row, std::move(content.attributes));
  outline_.setPersistentId(row, content.persistentId);
  return row;
}

void Edit::insert(Row& row, const Row& parent, const Row* before) {
  place(row, parent, before);
  std::get<PlaceBefore>(changes_.back()).creates = true;
}

void Edit::place(const Row& row, const Row& parent, const Row* before) {
  if (before == &row) before = row.next();
  Row& moved = outline_.mutableRow(row);
  changes_.emplace_back(placeOf(outline_, moved));
  if (row.parent() != nullptr) outline_.remove(moved);
  outline_.insert(moved, outline_.mutableRow(parent),
                  before != nullptr ? &outline_.mutableRow(*before) : nullptr);
}

void Edit::remove(const Row& row) {
  Row& removed = outline_.mutableRow(row);
  PlaceBefore before = placeOf(outline_, removed);
  before.removes = true;
  changes_.emplace_back(before);
  outline_.remove(removed);
}

void Edit::setType(const Row& row, RowType type) {
  if (row.type() == type) return;
  if (!carriesText(type)) setText(row, Text());
  outline_.setType(recordContent(row), type);
}

void Edit::setText(const Row& row, Text text) {
  if (row.text() != text) outline_.setText(recordContent(row), std::move(text));
}

void Edit::setAttributes(const Row& row, Attributes attributes) {
  if (row.attributes() != attributes) outline_.setAttributes(recordContent(row), std::move(attributes));
}

void Edit::setPersistentId(const Row& row, std::string_view id) {
  if (row.persistentId() == id) return;
  release(id);
  outline_.setPersistentId(recordContent(row), id);
}

/// Takes the persistent id off the row that holds it.
void Edit::release(std::string_view persistentId) {
  if (persistentId.empty()) return;
  if (const Row* holder = outline_.findPersistent(persistentId)) setPersistentId(*holder, "");
}

/// Records the row's content before a change to it and sets its time. Changes in a row share one record.
Row& Edit::recordContent(const Row& changed) {
  Row& row = outline_.mutableRow(changed);
  const auto* last = changes_.empty() ? nullptr : std::get_if<ContentBefore>(&changes_.back());
  if (last == nullptr || last->row != &row) changes_.emplace_back(contentOf(row));
  outline_.setTimes(row, row.created(), now_);
  return row;
}

void Edit::rollBack() {
  std::vector<Change> changes = take();
  undo(outline_, changes);
  discardCreated(outline_, changes);
}

bool carriesText(RowType type) { return type != RowType::hr; }

}  // namespace vell::headless
