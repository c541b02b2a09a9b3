#pragma once

#include <string>
#include <string_view>

#include "formats/attribute_list.h"
#include "formats/format.h"
#include "text/lines.h"

// What the reader, the writer and the update of `.vell` share.
namespace vell::formats {

/// True for the first line of a header: "vell 1", "vell 2", …
bool isVellHeader(std::string_view line);

/// A row's first line taken apart, without the tabs before it: a mark, a text and a trailer with blanks
/// between them. Each part may be missing. The views are into the line.
struct VellLine {
  std::string_view mark;     ///< "#", "[x]", "7)", "```" …; also "---" and the "\" of a row without text
  std::string_view text;     ///< inline markup; of code what stands behind the fence
  std::string_view trailer;  ///< with its braces
  RowType type = RowType::body;
  bool done = false;
  bool isFence = false;
  RowTrailer says;  ///< what the trailer says
};
VellLine takeApart(std::string_view line);

/// What a row says that begins with this line (without tabs), with the lines of its code taken from `lines`.
/// A row is created at `created` unless its trailer says otherwise. Throws FormatError.
RowContent readVellRow(std::string_view line, std::size_t depth, Timestamp created, text::Lines& lines);

/// Writes a row as `.vell` does. Where times are dropped its trailer tells none.
class VellWriter {
 public:
  VellWriter(Timestamp created, Times times) : created_(created), times_(times) {}

  /// Appends the row's lines, without the tabs before the first and the end of the last.
  void write(const Row& row, std::size_t depth, std::string& out) const;
  /// Empty where the row is written without a mark.
  std::string_view mark(const Row& row) const;
  /// What its trailer has to say; `typeIsMarked` where it need not tell the type.
  RowTrailer trailer(const Row& row, bool typeIsMarked) const;

 private:
  Timestamp created_;
  Times times_;
};

/// Puts a backslash where a body row's markup from `from` on would be read as a mark or a fence.
void escapeMark(std::string& out, std::size_t from);

}  // namespace vell::formats
