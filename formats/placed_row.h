#pragma once

#include <cstdint>
#include <vector>

#include "formats/document.h"

namespace vell::formats {

/// `tree` hangs each row below its nearest chosen ancestor, `flat` puts every row at top level.
enum class Shape { tree, flat };

/// A row to be written and how deep it stands there; top level is 0.
struct PlacedRow {
  const Row* row;
  std::uint32_t depth;
};

/// Rows in document order: a row's children follow it, one deeper.
using PlacedRows = std::vector<PlacedRow>;

/// Every row of the outline but the root.
PlacedRows placeAll(const Outline& outline, Shape shape = Shape::tree);
/// Some rows of the outline, given in any order; repeated ones count once. The root stands for itself: it is
/// written as a row of type "root" only when asked for by itself, so leave it out to get documents that can
/// be read back.
PlacedRows placeSome(const Outline& outline, const std::vector<const Row*>& rows, Shape shape = Shape::tree);

}  // namespace vell::formats
