#pragma once

#include <vector>

#include "headless/editing/edit.h"

namespace vell::headless {

/// Whether copies take the persistent ids over, which those that have them then lose.
enum class PersistentIds { taken, left };

/// A copy of the row, of this outline or another, with what is below it; still outside the tree. Appends
/// every copy to `made`, in document order.
Row& copyRow(Edit& edit, const Row& row, PersistentIds ids, std::vector<const Row*>& made);

}  // namespace vell::headless
