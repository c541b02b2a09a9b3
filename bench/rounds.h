#pragma once

#include <functional>
#include <string>
#include <vector>

namespace vell::bench {

/// One of those who do the same work.
struct Contender {
  std::string name;
  std::function<double()> measure;  // does the work once and gives what it took
  int rounds = 1'000'000;           // takes part in the first so many rounds only: for the very slow
};

/// Lets all contenders work in turn, round after round, so that a disturbance of the machine meets all of
/// them, and gives the median of each. The first round warms up and does not count.
std::vector<double> medians(const std::vector<Contender>& contenders, int rounds);

}  // namespace vell::bench
