#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/format.h"

// What the reader and the writer of markdown share.
namespace vell::formats {

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

/// Finds where rows stand that follow one another in a text: below the headings above them, and in the items
/// and quotes that they are written in.
class MarkdownNesting {
 public:
  MarkdownNesting() { containers_.push_back({}); }

  std::size_t containers() const { return containers_.size() - 1; }
  /// Leaves all containers but the first ones.
  void leave(std::size_t containers) { containers_.resize(containers + 1); }
  /// The next rows stand in the item or quote of the row at that depth.
  void enter(std::size_t depth) { containers_.push_back({depth + 1, containers_.back().level(), {}}); }

  /// Where a row stands that does not say so; `level` of a heading, else 0.
  std::size_t depthOf(std::size_t level) const;
  /// The level of the section in which a row of that depth stands.
  std::size_t enclosingAt(std::size_t depth) const;
  /// How deep the rows of the innermost container stand outside of all sections.
  std::size_t base() const { return containers_.back().base; }
  /// Places the next row: sections that it does not stand in are over. With a level it begins one.
  void place(std::size_t depth, std::size_t level);

 private:
  struct Section {
    std::size_t level;
    std::size_t depth;
  };
  struct Container {
    std::size_t base = 0;
    std::size_t outerLevel = 0;
    std::vector<Section> sections;

    std::size_t level() const { return sections.empty() ? outerLevel : sections.back().level; }
  };

  std::vector<Container> containers_;
};

/// Stands for a body row without text.
inline constexpr std::string_view emptyMarkdownRow = "<br>";
/// Begins the text of a note within a quote.
inline constexpr std::string_view noteMark = "[!NOTE]";
inline constexpr std::size_t maxHeadingLevel = 6;

/// The level that a heading has without being told: one below the section it stands in (0: none).
std::size_t naturalLevel(std::size_t enclosing);

}  // namespace vell::formats
