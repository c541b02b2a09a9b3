#pragma once

#include <span>
#include <string>
#include <string_view>

#include "formats/format.h"

namespace vell::formats {

/// Plain text: one line a row, tabs for depth, every row a body row.
void readTxt(std::string_view text, const ReadOptions& options, Outline& outline);
void writeTxt(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out);

}  // namespace vell::formats
