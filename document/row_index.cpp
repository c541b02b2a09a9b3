#include "document/row_index.h"

#include <functional>

#include "document/row.h"

namespace vell::document {
namespace {

std::size_t hashOf(std::string_view id) { return std::hash<std::string_view>()(id); }

}  // namespace

Row* RowIndex::find(std::string_view id) const {
  if (slots_.empty()) return nullptr;
  const std::size_t hash = hashOf(id);
  for (std::size_t at = home(hash); slots_[at].row; at = after(at)) {
    if (slots_[at].hash == hash && slots_[at].row->persistentId() == id) return slots_[at].row;
  }
  return nullptr;
}

bool RowIndex::insert(Row& row) {
  if (slots_.size() * 3 <= used_ * 4) grow();
  const std::size_t hash = hashOf(row.persistentId());
  std::size_t at = home(hash);
  for (; slots_[at].row; at = after(at)) {
    if (slots_[at].hash == hash && slots_[at].row->persistentId() == row.persistentId()) return false;
  }
  slots_[at] = {&row, hash};
  ++used_;
  return true;
}

/// Closes the gap by moving back what had to pass over it.
void RowIndex::erase(const Row& row) {
  std::size_t gap = home(hashOf(row.persistentId()));
  while (slots_[gap].row != &row) gap = after(gap);
  for (std::size_t at = after(gap); slots_[at].row; at = after(at)) {
    const std::size_t wished = home(slots_[at].hash);
    const bool passedGap = gap <= at ? wished <= gap || wished > at : wished <= gap && wished > at;
    if (!passedGap) continue;
    slots_[gap] = slots_[at];
    gap = at;
  }
  slots_[gap] = {};
  --used_;
}

void RowIndex::grow() {
  std::vector<Slot> old(slots_.empty() ? 8 : slots_.size() * 2);
  old.swap(slots_);
  for (const Slot& slot : old) {
    if (!slot.row) continue;
    std::size_t at = home(slot.hash);
    while (slots_[at].row) at = after(at);
    slots_[at] = slot;
  }
}

}  // namespace vell::document
