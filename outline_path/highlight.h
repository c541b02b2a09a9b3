#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "outline_path/with_parse.h"

namespace vell::outline_path {

/// What a range of the text is, for colouring it as it is typed.
enum class SyntaxClass {
  outlinePathRelationOp,
  outlinePathPredicateOp,
  outlinePathRowSetOp,
  outlinePathError,
  outlinePathAttribute,
  outlinePathUnquoted,
  outlinePathStepAxis,
  outlinePathStepSeparator,
};

std::string_view nameOf(SyntaxClass syntaxClass);

struct HighlightedRange {
  /// Offsets in bytes, the end exclusive; equal for an error at the end of the text.
  std::size_t begin, end;
  SyntaxClass syntaxClass;
  // clang-tidy 14 takes the zero that it compares with for a pointer. NOLINTNEXTLINE(modernize-use-nullptr)
  auto operator<=>(const HighlightedRange&) const = default;
};

/// The coloured ranges of a text that was parsed with its trace, in order, and the place of its error.
std::vector<HighlightedRange> highlight(const OutlinePathWithParse& path);

}  // namespace vell::outline_path
