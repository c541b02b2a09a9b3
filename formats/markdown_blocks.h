#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vell::formats {

/// A block of a markdown text, as CommonMark and its tables define them.
struct MarkdownBlock {
  // clang-format off
  enum class Kind {
    item, quote, nested,                                           // containers; their blocks follow them
    paragraph, atxHeading, setextHeading, rule, fenced, indented,
    verbatim                                                       // a table, HTML, a formula, a footnote
  };
  // clang-format on

  Kind kind = Kind::paragraph;
  std::size_t depth = 0;  ///< containers around it
  /// Bytes of the text: from its first character to the end of its last line; of a container its mark alone.
  std::size_t begin = 0;
  std::size_t end = 0;
  /// Where the mark of the quote that it stands in begins on its first line; else `begin`.
  std::size_t markBegin = 0;
  std::size_t level = 0;  ///< of a heading
  /// Its lines without what the containers put in front of them, joined by line feeds.
  std::string text;
};

/// What indentation below a row that is no list item means: code to everyone, rows in a text of Vell.
enum class Indentation { code, rows };

/// Reads the blocks of a text in order.
class MarkdownBlockReader {
 public:
  /// From that byte on.
  MarkdownBlockReader(std::string_view text, std::size_t from, Indentation indentation)
      : text_(text), next_(from), indentation_(indentation) {}

  /// The blocks of the next stretch, which ends before a block that stands in no other: however long a text
  /// is, little of it is held at a time. Empty at the end.
  std::vector<MarkdownBlock> read();

 private:
  std::string_view text_;
  std::size_t next_;
  Indentation indentation_;
};

/// Makes one verbatim block of each group of blocks that is a formula or a footnote: CommonMark does not know
/// these.
std::vector<MarkdownBlock> joinVerbatim(std::string_view text, std::vector<MarkdownBlock> blocks);

/// True if the text begins a formula that it does not end.
bool opensFormula(std::string_view text);
/// True if the paragraph begins with the definition of a link or a footnote.
bool isMarkdownDefinition(std::string_view text);

}  // namespace vell::formats
