#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vell::json {

struct TokenRange {
  std::uint32_t first;
  std::uint32_t end;
};

/// Checks the grammar of a text over the offsets of its structure, `count` of them from `first` on, and turns
/// them in place into the tokens that Index describes. The room of maxDepth entries before them is needed
/// since an opened container takes one entry more than it has yet given. Throws ParseError.
TokenRange indexTokens(std::string_view text, std::uint32_t* offsets, std::size_t first, std::size_t count);

}  // namespace vell::json
