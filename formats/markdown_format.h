#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/format.h"

// What the reader and the writer of markdown share.
namespace vell::formats {

struct MarkdownBlock;

/// As what a row stands in a text; `type` in its trailer can say that it is another type all the same.
enum class MarkdownForm { paragraph, item, quote, heading, rule, code, verbatim };

/// A row of a markdown text.
struct MarkdownRow {
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  RowContent content;
  std::size_t depth = 0;
  SourceSpan span;
  MarkdownForm form = MarkdownForm::paragraph;
  std::string trailer;                   ///< as written, with its braces
  std::string inlineSource;              ///< what its text was parsed from; of fenced code the opening line
  std::size_t level = 0;                 ///< of a heading, from 1
  std::size_t enclosing = 0;             ///< level of the section that a heading stands in
  bool gathers = false;                  ///< it is a heading that begins a section
  std::optional<std::size_t> toldDepth;  ///< in its trailer, from that of its container's rows
  std::size_t container = none;          ///< the row in whose item or quote it stands
  bool isContainer = false;
};

struct MarkdownText {
  /// The lines between the `---` lines of the front matter, and where it ends; all 0 where there is none.
  std::size_t headerBegin = 0;
  std::size_t headerEnd = 0;
  std::size_t bodyBegin = 0;
  std::vector<MarkdownRow> rows;  ///< in the order of the text
};

/// What a text is read as.
enum class MarkdownScope {
  file,  ///< a document: indented code is code unless Vell made the file, headings keep unusual levels
  rows   ///< rows that are to become part of an outline: indentation nests
};

/// `text` may begin with a byte order mark. The rows have that time. An outline that is given gets what the
/// front matter says.
MarkdownText readMarkdownText(std::string_view text, MarkdownScope scope, Timestamp time = 0,
                              Outline* outline = nullptr);

/// The rows that the blocks of the text are.
std::vector<MarkdownRow> rowsOfBlocks(std::string_view text, const std::vector<MarkdownBlock>& blocks,
                                      MarkdownScope scope, Timestamp time);

/// Stands for a body row without text.
inline constexpr std::string_view emptyMarkdownRow = "<br>";
/// Begins the text of a note within a quote.
inline constexpr std::string_view noteMark = "[!NOTE]";

}  // namespace vell::formats
