#include "headless/editing/copy_rows.h"

#include <utility>

namespace vell::headless {

Row& copyRow(Edit& edit, const Row& top, PersistentIds ids, std::vector<const Row*>& made) {
  std::vector<std::pair<const Row*, Row*>>
      copies;  // of the row at hand and those above it: no recursion, rows may be deep
  Row* first = nullptr;
  for (const Row* row = &top; row != nullptr; row = nextInOrder(row, &top)) {
    const std::string persistentId = ids == PersistentIds::taken ? row->persistentId() : "";
    Row& copy = edit.make({row->type(), row->text(), row->attributes(), persistentId});
    made.push_back(&copy);
    while (!copies.empty() && copies.back().first != row->parent()) copies.pop_back();
    if (copies.empty()) {
      first = &copy;
    } else {
      edit.attach(copy, *copies.back().second);
    }
    copies.emplace_back(row, &copy);
  }
  return *first;
}

}  // namespace vell::headless
