#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "json/text.h"

namespace vell::json {

/// Where the brackets, commas, colons, strings, numbers and literals of a text begin, in order.
struct TokenOffsets {
  /// The first one stands at `offsets[first]`; what is before it is free for whoever reuses the array.
  std::unique_ptr<std::uint32_t[]> offsets;
  std::size_t first = 0;
  std::size_t count = 0;
};

/// Finds them, and checks that the text is UTF-8 and that its strings end and hold no control characters.
/// Throws ParseError.
TokenOffsets tokenize(const Text& text, std::size_t first);

/// How a message names what stands at an offset: 'x', byte 0x01, the end of the text.
std::string describeAt(std::string_view text, std::size_t offset);

}  // namespace vell::json
