#pragma once

#include <span>
#include <string>
#include <string_view>

#include "formats/format.h"

namespace vell::formats {

/// OPML 2.0; what it has no place for stands in attributes that begin with "vell-". Described in
/// docs/formats.md.
void readOpml(std::string_view text, const ReadOptions& options, Outline& outline);
void writeOpml(const Outline& outline, std::span<const PlacedRow> rows, bool rowsOnly, std::string& out);

}  // namespace vell::formats
