#pragma once

#include <stdexcept>
#include <string>

namespace vell::headless {

/// What the application cannot do, told to whoever asked for it: what, where, and what to do about it.
class Problem : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// `what`, then ": " and the system's reason (errno).
Problem systemProblem(const std::string& what);

}  // namespace vell::headless
