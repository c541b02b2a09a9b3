#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vell::text {

/// Text as a terminal shows it and the columns that it takes.
struct DisplayText {
  std::string text;
  std::size_t width = 0;
};

/// Columns that a valid text takes on a terminal.
std::size_t displayWidth(std::string_view text);

/// `text` with every character in one line's worth: a tab becomes a blank, other control characters and
/// bytes that are no UTF-8 become "?".
DisplayText displayText(std::string_view text);
/// The first and last `columns` columns, "…" in place of the rest.
DisplayText firstColumns(const DisplayText& text, std::size_t columns);
DisplayText lastColumns(const DisplayText& text, std::size_t columns);

}  // namespace vell::text
