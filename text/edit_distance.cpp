#include "text/edit_distance.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace vell::text {
namespace {

bool isSameLetter(char a, char b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; };
  return lower(a) == lower(b);
}

}  // namespace

std::size_t editDistance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> beforeLast(to.size() + 1), last(to.size() + 1), row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= from.size(); ++i) {
    beforeLast.swap(last);
    last.swap(row);
    row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t substituted = last[j - 1] + (isSameLetter(from[i - 1], to[j - 1]) ? 0 : 1);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, substituted});
      const bool isSwapped =
          i > 1 && j > 1 && isSameLetter(from[i - 1], to[j - 2]) && isSameLetter(from[i - 2], to[j - 1]);
      if (isSwapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
  }
  return row[to.size()];
}

std::string_view nearest(std::string_view word, std::span<const std::string_view> candidates) {
  constexpr std::size_t longestWord = 40;  // a pasted text is compared with no candidate
  constexpr std::size_t shortestBeginning = 3;
  if (word.empty() || word.size() > longestWord) return {};
  std::string_view best;
  std::size_t least = 1 + std::max<std::size_t>(1, word.size() / 3);
  for (const std::string_view candidate : candidates) {
    const bool isBeginning = word.size() >= shortestBeginning && candidate.starts_with(word);
    const std::size_t distance = isBeginning ? 1 : editDistance(word, candidate);
    if (distance >= least) continue;
    best = candidate;
    least = distance;
  }
  return best;
}

}  // namespace vell::text
