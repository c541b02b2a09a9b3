#pragma once

#include <cstddef>
#include <string_view>

#include "formats/format.h"

// What the reader and the writer of markdown share.
namespace vell::formats {

/// A row's mark and what stands behind it, on a line without indentation and trailer.
struct MarkdownMark {
  RowType type = RowType::body;
  bool done = false;
  std::size_t level = 0;  ///< of a heading, from 1
  std::string_view text;
};
MarkdownMark markdownMark(std::string_view line);

/// Stands for a body row without text.
inline constexpr std::string_view emptyMarkdownRow = "<br>";
/// Begins the text of a note within a quote.
inline constexpr std::string_view noteMark = "[!NOTE]";
inline constexpr std::size_t maxHeadingLevel = 6;

/// The level that a heading has without being told: one below the section it stands in (0: none).
std::size_t naturalLevel(std::size_t enclosing);

}  // namespace vell::formats
