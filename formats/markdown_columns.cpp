#include "formats/markdown_columns.h"

#include <algorithm>

namespace vell::formats {
namespace {

constexpr std::size_t tabColumns = 4;

std::size_t tabWidth(std::size_t column) { return tabColumns - column % tabColumns; }

}  // namespace

std::size_t LineCursor::take(std::string_view line, std::size_t columns) {
  std::size_t taken = 0;
  while (taken < columns) {
    if (spare == 0) {
      if (at == line.size() || (line[at] != ' ' && line[at] != '\t')) break;
      spare = line[at] == ' ' ? 1 : tabWidth(column);
      ++at;
    }
    const std::size_t step = std::min(spare, columns - taken);
    spare -= step;
    column += step;
    taken += step;
  }
  return taken;
}

std::size_t indentBytes(std::string_view line, std::size_t maxColumns) {
  LineCursor cursor;
  cursor.take(line, maxColumns);
  return cursor.at;
}

std::size_t indentColumns(std::string_view line) {
  LineCursor cursor;
  return cursor.takeAll(line);
}

}  // namespace vell::formats
