#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "formats/inline_draft.h"

namespace vell::formats {

/// A stretch of a text with one style.
struct StyledRange {
  std::size_t begin;
  std::size_t end;
  Attributes style;
};
std::vector<StyledRange> rangesOf(const Text& text);

/// How styles are written: with marks where there are any, or each range in brackets, which never is
/// ambiguous.
enum class StyleForm { marks, brackets };

/// Appends the ranges of the text, neighbours of one style together.
void appendRanges(Draft& draft, std::string_view text, std::span<const StyledRange> ranges, StyleForm form);

}  // namespace vell::formats
