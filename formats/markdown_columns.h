#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vell::formats {

// White space at the front of markdown lines is counted in columns: a tab reaches the next multiple of four.

/// A place in a line. A tab can be taken in part: `spare` are its columns that are left.
struct LineCursor {
  std::size_t at = 0;
  std::size_t column = 0;
  std::size_t spare = 0;

  /// Takes up to that many columns of white space. Returns how many there were.
  std::size_t take(std::string_view line, std::size_t columns);
  std::size_t takeAll(std::string_view line) { return take(line, std::string_view::npos); }
  std::string rest(std::string_view line) const { return std::string(spare, ' ').append(line.substr(at)); }
};

/// Bytes of white space at the front, as far as that many columns.
std::size_t indentBytes(std::string_view line, std::size_t maxColumns = std::string_view::npos);
std::size_t indentColumns(std::string_view line);

}  // namespace vell::formats
