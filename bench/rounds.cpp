#include "bench/rounds.h"

#include <algorithm>

namespace vell::bench {
namespace {

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace

std::vector<double> medians(const std::vector<Contender>& contenders, int rounds) {
  std::vector<std::vector<double>> taken(contenders.size());
  for (int round = 0; round <= rounds; ++round) {
    for (std::size_t i = 0; i < contenders.size(); ++i) {
      if (round > contenders[i].rounds) continue;
      const double value = contenders[i].measure();
      if (round > 0) taken[i].push_back(value);
    }
  }
  std::vector<double> result;
  for (auto& values : taken) result.push_back(median(std::move(values)));
  return result;
}

}  // namespace vell::bench
