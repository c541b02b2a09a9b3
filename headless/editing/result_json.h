#pragma once

#include <string>
#include <vector>

#include "headless/editing/update_rows.h"

namespace vell::headless {

// What changes are answered with; rows stand in session shape, without their children.

/// [row,…]
void appendRows(std::string& out, const std::vector<const Row*>& rows);
/// [{"row":row,"fieldErrors":{"field":"message",…}},…], without `fieldErrors` where there are none.
void appendUpdatedRows(std::string& out, const std::vector<UpdatedRow>& rows);

}  // namespace vell::headless
