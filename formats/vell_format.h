#pragma once

#include <span>
#include <string>
#include <string_view>

#include "formats/format.h"

namespace vell::formats {

/// The native format: one line a row, tabs for depth, lossless. Described in docs/formats.md.
void readVell(std::string_view text, const ReadOptions& options, Outline& outline);
void writeVell(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out);

/// A row's mark and what stands behind it.
struct VellMark {
  RowType type = RowType::body;
  bool done = false;
  std::string_view text;
};
VellMark vellMark(std::string_view line);

/// Stands for a body row without text, as blank lines are only for the eye.
inline constexpr std::string_view emptyVellRow = "\\";

}  // namespace vell::formats
