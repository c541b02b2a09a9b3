#pragma once

#include <cstddef>
#include <vector>

namespace vell::formats {

inline constexpr std::size_t maxHeadingLevel = 6;

/// The level that a heading has without being told: one below the section it stands in (0: none).
std::size_t naturalLevel(std::size_t enclosing);

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

  bool operator==(const MarkdownNesting&) const = default;

 private:
  struct Section {
    std::size_t level;
    std::size_t depth;

    bool operator==(const Section&) const = default;
  };
  struct Container {
    std::size_t base = 0;
    std::size_t outerLevel = 0;
    std::vector<Section> sections;

    std::size_t level() const { return sections.empty() ? outerLevel : sections.back().level; }
    bool operator==(const Container&) const = default;
  };

  std::vector<Container> containers_;
};

}  // namespace vell::formats
