#include "cli/suggest.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace vell::cli {
namespace {

/// Insertions, deletions, substitutions and swaps of neighbours that turn one word into the other.
std::size_t editDistance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> beforeLast(to.size() + 1), last(to.size() + 1), row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= from.size(); ++i) {
    beforeLast.swap(last);
    last.swap(row);
    row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t substituted = last[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, substituted});
      const bool swapped = i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
      if (swapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
  }
  return row[to.size()];
}

}  // namespace

std::string_view nearest(std::string_view word, std::span<const std::string_view> candidates) {
  // Longer words are compared with no candidate, so that a pasted text costs nothing.
  constexpr std::size_t longestWord = 40;
  if (word.size() > longestWord) return {};
  std::string_view best;
  std::size_t bestDistance = 1 + std::max<std::size_t>(1, word.size() / 3);
  for (const std::string_view candidate : candidates) {
    const bool begun = word.size() >= 3 && candidate.starts_with(word);
    const std::size_t distance = begun ? 1 : editDistance(word, candidate);
    if (distance >= bestDistance) continue;
    best = candidate;
    bestDistance = distance;
  }
  return best;
}

std::string didYouMean(std::string_view word, const Command& command) {
  std::vector<std::string_view> candidates;
  if (word.starts_with('-')) {
    for (const Option* option : namedOptions(command)) candidates.push_back(option->name);
  } else {
    for (const Command* next : command.subcommands) candidates.push_back(next->name);
  }
  const std::string_view meant = nearest(word, candidates);
  if (meant.empty()) return {};
  return " Did you mean '" + std::string(meant) + "'?";
}

}  // namespace vell::cli
