#include "formats/markdown_nesting.h"

#include <algorithm>

namespace vell::formats {

std::size_t naturalLevel(std::size_t enclosing) { return std::min(enclosing + 1, maxHeadingLevel); }

std::size_t MarkdownNesting::depthOf(std::size_t level) const {
  const Container& container = containers_.back();
  for (auto section = container.sections.rbegin(); section != container.sections.rend(); ++section) {
    if (level == 0 || section->level < level) return section->depth + 1;
  }
  return container.base;
}

std::size_t MarkdownNesting::enclosingAt(std::size_t depth) const {
  const Container& container = containers_.back();
  for (auto section = container.sections.rbegin(); section != container.sections.rend(); ++section) {
    if (section->depth < depth) return section->level;
  }
  return container.outerLevel;
}

void MarkdownNesting::place(std::size_t depth, std::size_t level) {
  std::vector<Section>& sections = containers_.back().sections;
  while (!sections.empty() && sections.back().depth >= depth) sections.pop_back();
  if (level > 0) sections.push_back({level, depth});
}

}  // namespace vell::formats
