#pragma once

#include <string_view>
#include <vector>

#include "headless/editing/destination.h"
#include "headless/editing/edit.h"

namespace vell::headless {

/// One new row from one line of markdown; a line feed at its end does not count. Blank text makes an empty
/// body row. A persistent id in the row's trailer is taken from the row that has it. Throws Problem for
/// several lines.
const Row& createRow(Edit& edit, std::string_view markdown, const Destination& destination);

/// Rows from markdown of any length, the top ones side by side. Returns all of them in outline order.
std::vector<const Row*> createRows(Edit& edit, std::string_view markdown, const Destination& destination);

}  // namespace vell::headless
