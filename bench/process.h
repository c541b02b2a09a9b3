#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <sys/types.h>

namespace vell::bench {

/// A program and its arguments; found in PATH unless it holds a "/".
using Command = std::vector<std::string>;

/// What one run of a program took.
struct Cost {
  double seconds;    // from before it is started until it is gone
  double peakBytes;  // of resident memory
};

/// Runs a program to its end, its output going to a file made anew. Throws where it does not end with status
/// 0.
Cost run(const Command& command, const std::string& output = "/dev/null");

/// A program that runs beside the measured ones and is killed at the end of its scope.
class Background {
 public:
  explicit Background(const Command& command);
  Background(Background&& other) noexcept;
  Background& operator=(Background&&) = delete;
  ~Background();

 private:
  pid_t process_;  // 0 when moved from
};

}  // namespace vell::bench
