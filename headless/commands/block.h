#pragma once

#include <vector>

#include "headless/editing/transaction.h"

namespace vell::headless {

/// The selected rows without those that stand below another selected one; empty where there is no row.
std::vector<const Row*> selectedBlock(Transaction& transaction);

/// Those rows if they are neighbours' children of one parent, as a block that moves as one is; else empty.
std::vector<const Row*> movableBlock(Transaction& transaction);

/// The row seen above or below, within the focused row and outside collapsed ones; null at the ends.
const Row* seenAbove(const Editor& editor, const Row& row);
const Row* seenBelow(const Editor& editor, const Row& row);

}  // namespace vell::headless
