#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "json/index.h"

namespace vell::json {

/// How many entries the array of offsets of a text of so many bytes needs before its first one: an opened
/// container takes one entry more than it has yet given, and so does the value in it.
constexpr std::size_t indexRoom(std::size_t textSize) { return std::min(textSize, maxDepth) + 2; }

/// Checks the grammar of a text over the offsets of its structure, `count` of them from entry `indexRoom` of
/// its size on, and turns them in place into the tokens that Index describes, from the array's start. Throws
/// ParseError.
void indexTokens(std::string_view text, std::uint32_t* entries, std::size_t count);

}  // namespace vell::json
