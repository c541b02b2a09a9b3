#pragma once

#include <span>
#include <string>

#include "formats/placed_row.h"

namespace vell::formats {

/// Rows with live session ids, as programs that go on to change them read them.
void writeSession(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out);
/// Rows as a file keeps them: `id` is the persistent id.
void writeJson(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out);

/// Appends one row in session shape without its children: what changes to rows are answered with.
void appendSessionRow(std::string& out, const Row& row);

}  // namespace vell::formats
