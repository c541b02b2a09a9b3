#pragma once

#include <cstddef>
#include <string_view>

namespace vell::json {

/// The run of bytes from an offset up to a blank, comma, colon, bracket or `limit`: a number or literal.
std::string_view scalarAt(std::string_view text, std::size_t offset, std::size_t limit);

/// Whether a run is a JSON number (RFC 8259, section 6), `true`, `false` or `null`.
bool isScalar(std::string_view run);

}  // namespace vell::json
