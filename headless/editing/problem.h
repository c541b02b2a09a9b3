#pragma once

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>

namespace vell::headless {

/// What the application cannot do, as a message for whoever asked: what, where, and what to do about it.
class Problem : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// `what`, then ": " and the system's reason (errno).
inline Problem systemProblem(const std::string& what) {
  return Problem(what + ": " + std::generic_category().message(errno));
}

}  // namespace vell::headless
