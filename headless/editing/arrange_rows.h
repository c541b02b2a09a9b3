#pragma once

#include <vector>

#include "headless/editing/destination.h"
#include "headless/editing/edit.h"

namespace vell::headless {

/// Moves the rows and their subtrees side by side, in the order given. A row below another moved row stays
/// where it is in that subtree. Positions count the children that are not moved. Returns the rows, each
/// once. Throws Problem and changes nothing if the rows hold the root, or if the place is within or beside a
/// moved row.
std::vector<const Row*> moveRows(Edit& edit, const std::vector<const Row*>& rows,
                                 const DestinationRequest& request);

/// Deletes the rows and their subtrees. Returns how many rows that were, each counted once. Throws Problem
/// and changes nothing if the rows hold the root.
std::size_t deleteRows(Edit& edit, const std::vector<const Row*>& rows);

}  // namespace vell::headless
