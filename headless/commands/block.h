#pragma once

#include <vector>

#include "headless/editing/transaction.h"

namespace vell::headless {

/// The selected rows without those below another selected row; empty if no row is selected.
std::vector<const Row*> selectedBlock(Transaction& transaction);

/// The selected block if its rows are children of one parent, so that they can move together; else empty.
std::vector<const Row*> movableBlock(Transaction& transaction);

/// The visible row above or below, within the focused row and outside collapsed ones; null at the ends.
const Row* visibleAbove(const Editor& editor, const Row& row);
const Row* visibleBelow(const Editor& editor, const Row& row);

}  // namespace vell::headless
