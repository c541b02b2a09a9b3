#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/format.h"
#include "formats/markdown_blocks.h"
#include "formats/markdown_nesting.h"

// What the reader and the writer of markdown share.
namespace vell::formats {

/// As what a row stands in a text; `type` in its trailer can say that it is another type all the same.
enum class MarkdownForm : std::uint8_t { paragraph, item, quote, heading, rule, code, verbatim };

/// Where and as what a row stands among the rows of a text.
struct MarkdownPlace {
  static constexpr std::uint32_t none = static_cast<std::uint32_t>(-1);

  std::uint32_t depth = 0;
  std::uint32_t container = none;          ///< the row in whose item or quote it stands
  std::optional<std::uint16_t> toldDepth;  ///< in its trailer, from that of its container's rows
  MarkdownForm form = MarkdownForm::paragraph;
  std::uint8_t level = 0;      ///< of a heading, from 1
  std::uint8_t enclosing = 0;  ///< level of the section that a heading stands in
  bool gathers : 1 = false;    ///< it is a heading that begins a section
  bool isContainer : 1 = false;
};

/// A row of a markdown text.
struct MarkdownRow : MarkdownPlace {
  RowContent content;
  SourceSpan span;
  std::string trailer;       ///< as written, with its braces
  std::string inlineSource;  ///< what its text was parsed from; of fenced code the opening line
};

/// What stands before the rows of a text.
struct MarkdownHead {
  /// The lines between the `---` lines of the front matter, and where it ends; all 0 where there is none.
  std::size_t headerBegin = 0;
  std::size_t headerEnd = 0;
  std::size_t bodyBegin = 0;
  Indentation indentation = Indentation::code;
};

struct MarkdownText {
  MarkdownHead head;
  std::vector<MarkdownRow> rows;  ///< in the order of the text
};

/// What a text is read as.
enum class MarkdownScope {
  file,  ///< a document: indented code is code unless Vell made the file, headings keep unusual levels
  rows   ///< rows that are to become part of an outline: indentation nests
};

/// `text` may begin with a byte order mark.
MarkdownText readMarkdownText(std::string_view text, MarkdownScope scope);

/// What a part of a text follows upon.
struct MarkdownContext {
  std::string lines;         ///< that open the items and quotes in which its first row stands, each a row
  MarkdownNesting nesting;   ///< in which its first row stands
  std::size_t maxDepth = 0;  ///< of its first row
};

/// The rows of the context's lines and of the part of a file behind them; bytes count from the first line.
std::vector<MarkdownRow> readMarkdownPart(std::string_view part, const MarkdownContext& context,
                                          Indentation indentation);

/// Hands on the rows that the blocks of the text are, in order.
void forEachMarkdownRow(std::string_view text, MarkdownBlockReader blocks, MarkdownScope scope,
                        const ReadOptions& options, const MarkdownContext& context,
                        const std::function<void(MarkdownRow&&)>& take);

/// Like updateMarkdown, checking what was written in parts of about so many rows.
FileText updateMarkdown(const Outline& outline, std::size_t partRows);

/// Stands for a body row without text.
inline constexpr std::string_view emptyMarkdownRow = "<br>";
/// Begins the text of a note within a quote.
inline constexpr std::string_view noteMark = "[!NOTE]";

}  // namespace vell::formats
