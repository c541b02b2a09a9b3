#pragma once

#include <algorithm>
#include <chrono>

namespace vell::bench {

/// The seconds that one call takes when it is made `times` times in a row.
template <class Work>
double secondsFor(int times, const Work& work) {
  const auto begin = std::chrono::steady_clock::now();
  for (int i = 0; i < times; ++i) work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count() / times;
}

/// The same for calls so short that others on the machine disturb whole rows of them: the best of 20 rows of
/// 100.
template <class Work>
double shortestSeconds(const Work& work) {
  double best = secondsFor(100, work);
  for (int i = 1; i < 20; ++i) best = std::min(best, secondsFor(100, work));
  return best;
}

}  // namespace vell::bench
