#include "headless/editing/arrange_rows.h"

#include <algorithm>
#include <unordered_set>

#include "headless/editing/problem.h"

namespace vell::headless {
namespace {

std::vector<const Row*> withoutRepeats(const std::vector<const Row*>& rows) {
  std::vector<const Row*> distinct;
  std::unordered_set<const Row*> seen;
  for (const Row* row : rows) {
    if (seen.insert(row).second) distinct.push_back(row);
  }
  return distinct;
}

/// The rows without those below another one of them, in their order.
std::vector<const Row*> topmost(const Outline& outline, const std::vector<const Row*>& rows) {
  outline.number();
  std::vector<const Row*> inOrder = rows;
  std::sort(inOrder.begin(), inOrder.end(),
            [](const Row* left, const Row* right) { return left->order() < right->order(); });
  std::unordered_set<const Row*> covered;
  std::uint32_t coveredUntil = 0;
  for (const Row* row : inOrder) {
    if (row->order() < coveredUntil) {
      covered.insert(row);
    } else {
      coveredUntil = row->orderEnd();
    }
  }
  std::vector<const Row*> top;
  for (const Row* row : rows) {
    if (covered.count(row) == 0) top.push_back(row);
  }
  return top;
}

void refuseRoot(const std::vector<const Row*>& rows, const char* what) {
  for (const Row* row : rows) {
    if (!row->parent()) throw Problem(std::string("The root cannot be ") + what + "; name rows below it");
  }
}

std::string nameOf(const Row& row) {
  return row.persistentId().empty() ? "Row " + std::to_string(row.id())
                                    : "Row \"" + row.persistentId() + "\"";
}

}  // namespace

std::vector<const Row*> moveRows(Edit& edit, const std::vector<const Row*>& rows,
                                 const DestinationRequest& request) {
  refuseRoot(rows, "moved");
  std::vector<const Row*> moved = withoutRepeats(rows);
  const std::vector<const Row*> block = topmost(edit.outline(), moved);
  const std::unordered_set<const Row*> isMoved(block.begin(), block.end());
  for (const Row* sibling : {request.before, request.after}) {
    if (sibling && isMoved.count(sibling)) throw Problem(nameOf(*sibling) + " cannot be moved beside itself");
  }
  const Destination to =
      resolve(edit.outline(), request, [&](const Row& row) { return isMoved.count(&row) == 0; });
  for (const Row* above = to.parent; above; above = above->parent()) {
    if (isMoved.count(above))
      throw Problem(nameOf(*above) + " cannot be moved into itself or a row below it");
  }
  for (const Row* row : block) edit.place(*row, *to.parent, to.before);
  return moved;
}

std::size_t deleteRows(Edit& edit, const std::vector<const Row*>& rows) {
  refuseRoot(rows, "deleted");
  std::size_t deleted = 0;
  const std::vector<const Row*> block = topmost(edit.outline(), withoutRepeats(rows));
  for (const Row* row : block) deleted += row->orderEnd() - row->order();
  for (const Row* row : block) edit.remove(*row);
  return deleted;
}

}  // namespace vell::headless
