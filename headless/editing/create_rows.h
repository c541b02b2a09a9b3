#pragma once

#include <string_view>
#include <vector>

#include "headless/editing/destination.h"
#include "headless/editing/edit.h"

namespace vell::headless {

/// Creates one row from one line of markdown; a line feed at its end does not count. Blank text makes an
/// empty body row. A persistent id in the row's trailer is taken from the row that has it. Throws Problem for
/// several lines.
const Row& createRow(Edit& edit, std::string_view markdown, const Destination& destination);

/// Creates rows from markdown of any length, the top ones side by side. Returns all of them in outline order.
std::vector<const Row*> createRows(Edit& edit, std::string_view markdown, const Destination& destination);

/// Whether copies take over the persistent ids of the rows that they are made from.
enum class PersistentIds { taken, left };

/// Copies the row, of this outline or another, with the rows below it; the copy is still outside the tree.
/// Appends every copy to `made`, in document order.
Row& copyRow(Edit& edit, const Row& row, PersistentIds ids, std::vector<const Row*>& made);

}  // namespace vell::headless
