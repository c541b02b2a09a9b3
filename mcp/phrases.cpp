#include "mcp/phrases.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

namespace vell::mcp {

namespace {

constexpr std::size_t longestCompared = 128;

bool sameLetter(char a, char b) {
  return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

/// How many letters must be changed, added or taken away; case does not count.
std::size_t editDistance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < from.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < to.size(); ++j) {
      const std::size_t replaced = diagonal + (sameLetter(from[i], to[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string listOf(const std::vector<std::string>& texts, const std::string& conjunction) {
  std::string list;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const bool last = i + 1 == texts.size();
    list += (i == 0 ? "" : last ? " " + conjunction + " " : ", ") + texts[i];
  }
  return list;
}

std::optional<std::string> nearest(std::string_view name, const std::vector<std::string>& candidates) {
  if (name.empty() || name.size() > longestCompared) return std::nullopt;
  std::optional<std::string> best;
  std::size_t least = std::max<std::size_t>(1, name.size() / 3) + 1;
  for (const std::string& candidate : candidates) {
    const std::size_t distance = editDistance(name, candidate);
    if (distance < least) {
      least = distance;
      best = candidate;
    }
  }
  return best;
}

}  // namespace vell::mcp
