#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "formats/rows.h"

namespace vell::formats {

/// The text that an outline was read from, where rows are lines with as many tabs before them as they are
/// deep: a head, the rows in order with separators between them, and a tail. The span of a row begins behind
/// its tabs and ends before the end of its last line.
class LineSource {
 public:
  explicit LineSource(const document::Source& source) : source_(source) {}

  bool isEmpty() const { return source_.spans().empty(); }
  bool holds(SessionId row) const { return source_.find(row) != nullptr; }
  bool isFirst(SessionId row) const { return row == source_.firstRow(); }
  /// What stands before the first row: the whole text where there are no rows.
  std::string_view head() const;
  /// What stands behind the last row.
  std::string_view tail() const;

  // Of a row that the text holds:
  std::size_t depth(SessionId row) const;
  std::string_view lines(SessionId row) const;
  /// The rows from `first` to `last` with what stands between them, and the tabs before the first.
  std::string_view stretch(SessionId first, SessionId last) const;
  /// What stands between the row and the one before it, without the row's tabs. Not of the first row.
  std::string_view separator(SessionId row) const;

 private:
  std::size_t lineStart(SessionId row) const { return source_.find(row)->begin - depth(row); }

  const document::Source& source_;
};

/// A row to be written that is not as it was read, or not where it was.
struct ChangedLine {
  const Row& row;
  std::size_t depth;
  std::string_view lines;  ///< as they were read, indented for `depth` now; empty where the row is new
};

/// Appends the row as lines, without the tabs before the first and the end of the last.
using LineRenderer = std::function<void(const ChangedLine& line, std::string& out)>;

/// The text of the outline as it is now: `head`, then its rows, then the source's tail. Rows that are as they
/// were read and as deep are copied with what separates them; rows that are only deeper or less deep keep
/// their lines; `render` writes the others, with `lineEnd` between rows that did not follow each other.
std::string updateLines(const Outline& outline, std::string head, std::string_view lineEnd, Times times,
                        const LineRenderer& render);

}  // namespace vell::formats
