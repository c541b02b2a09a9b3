#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "json/text.h"

namespace vell::json {

/// The offsets at which brackets, commas, colons, strings and scalars begin, in order.
struct Structure {
  /// They begin at entry `indexRoom` of the text's size, which is for those who rewrite the array in place.
  std::unique_ptr<std::uint32_t[]> offsets;
  std::size_t count = 0;
};

/// Finds them, and checks that the text is UTF-8, that its strings end and hold no control characters.
/// Throws ParseError.
Structure findStructure(const Text& text);

}  // namespace vell::json
