#include "headless/editing/edit.h"

namespace vell::headless {
namespace {

PlaceBefore placeOf(Outline& outline, Row& row) {
  Row* parent = row.parent() != nullptr ? &outline.mutableRow(*row.parent()) : nullptr;
  Row* next = row.next() != nullptr ? &outline.mutableRow(*row.next()) : nullptr;
  return {&row, parent, next};
}

/// Changes one thing to what the move holds, which then holds what was.
class Swap {
 public:
  explicit Swap(Outline& outline) : outline_(outline) {}

  void operator()(PlaceBefore& move) const {
    const PlaceBefore now = placeOf(outline_, *move.row);
    if (now.parent != nullptr) outline_.remove(*move.row);
    if (move.parent != nullptr) outline_.insert(*move.row, *move.parent, move.next);
    move.parent = now.parent;
    move.next = now.next;
  }
  void operator()(TypeBefore& move) const {
    const RowType now = move.row->type();
    outline_.setType(*move.row, std::exchange(move.type, now));
  }
  void operator()(TextBefore& move) const {
    Text now = move.row->text();
    outline_.setText(*move.row, std::exchange(move.text, std::move(now)));
  }
  void operator()(AttributesBefore& move) const {
    Attributes now = move.row->attributes();
    outline_.setAttributes(*move.row, std::exchange(move.attributes, std::move(now)));
  }
  void operator()(PersistentIdBefore& move) const {
    const std::string now = move.row->persistentId();
    outline_.setPersistentId(*move.row, std::exchange(move.id, now));
  }
  void operator()(TimesBefore& move) const {
    const Timestamp created = move.row->created();
    const Timestamp modified = move.row->modified();
    outline_.setTimes(*move.row, std::exchange(move.created, created),
                      std::exchange(move.modified, modified));
  }

 private:
  Outline& outline_;
};

}  // namespace

Row& Edit::make(NewRow content) {
  release(content.persistentId);
  Row& row = *outline_.create(content.type, std::move(content.text), now_);
  outline_.setAttributes(row, std::move(content.attributes));
  outline_.setPersistentId(row, content.persistentId);
  return row;
}

void Edit::insert(Row& row, const Row& parent, const Row* before) {
  place(row, parent, before);
  std::get<PlaceBefore>(moves_.back()).creates = true;
}

void Edit::place(const Row& row, const Row& parent, const Row* before) {
  if (before == &row) before = row.next();
  Row& moved = outline_.mutableRow(row);
  moves_.emplace_back(placeOf(outline_, moved));
  if (row.parent() != nullptr) outline_.remove(moved);
  outline_.insert(moved, outline_.mutableRow(parent),
                  before != nullptr ? &outline_.mutableRow(*before) : nullptr);
}

void Edit::remove(const Row& row) {
  Row& removed = outline_.mutableRow(row);
  moves_.emplace_back(placeOf(outline_, removed));
  outline_.remove(removed);
}

void Edit::setType(const Row& row, RowType type) {
  if (row.type() == type) return;
  if (!carriesText(type)) setText(row, Text());
  touch(row);
  moves_.emplace_back(TypeBefore{&outline_.mutableRow(row), row.type()});
  outline_.setType(outline_.mutableRow(row), type);
}

void Edit::setText(const Row& row, Text text) {
  if (row.text() == text) return;
  touch(row);
  moves_.emplace_back(TextBefore{&outline_.mutableRow(row), row.text()});
  outline_.setText(outline_.mutableRow(row), std::move(text));
}

void Edit::setAttributes(const Row& row, Attributes attributes) {
  if (row.attributes() == attributes) return;
  touch(row);
  moves_.emplace_back(AttributesBefore{&outline_.mutableRow(row), row.attributes()});
  outline_.setAttributes(outline_.mutableRow(row), std::move(attributes));
}

void Edit::setPersistentId(const Row& row, std::string_view id) {
  if (row.persistentId() == id) return;
  release(id);
  touch(row);
  moves_.emplace_back(PersistentIdBefore{&outline_.mutableRow(row), row.persistentId()});
  outline_.setPersistentId(outline_.mutableRow(row), id);
}

void Edit::release(std::string_view persistentId) {
  if (persistentId.empty()) return;
  if (const Row* holder = outline_.findPersistent(persistentId)) setPersistentId(*holder, "");
}

void Edit::touch(const Row& row) {
  if (row.modified() == now_) return;
  moves_.emplace_back(TimesBefore{&outline_.mutableRow(row), row.created(), row.modified()});
  outline_.setTimes(outline_.mutableRow(row), row.created(), now_);
}

void Edit::rollBack() {
  std::vector<Move> moves = take();
  swapBack(outline_, moves);
}

void swapBack(Outline& outline, std::vector<Move>& moves) {
  for (auto move = moves.rbegin(); move != moves.rend(); ++move) std::visit(Swap(outline), *move);
}

void swapForth(Outline& outline, std::vector<Move>& moves) {
  for (Move& move : moves) std::visit(Swap(outline), move);
}

bool carriesText(RowType type) { return type != RowType::hr; }

}  // namespace vell::headless
