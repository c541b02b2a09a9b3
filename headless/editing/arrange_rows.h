#pragma once

#include <vector>

#include "headless/editing/destination.h"
#include "headless/editing/edit.h"

namespace vell::headless {

/// Moves the rows with what is below them, side by side in the order given; a row below another one of them
/// stays where it is in there. Positions count the children that are not moved. Returns the rows, each once.
/// Throws Problem, with nothing changed, for the root and for places within or beside what is moved.
std::vector<const Row*> moveRows(Edit& edit, const std::vector<const Row*>& rows,
                                 const DestinationRequest& request);

/// Deletes the rows with what is below them. Returns how many rows that were, each counted once.
/// Throws Problem, with nothing changed, for the root.
std::size_t deleteRows(Edit& edit, const std::vector<const Row*>& rows);

}  // namespace vell::headless
