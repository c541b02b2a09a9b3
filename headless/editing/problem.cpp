#include "headless/editing/problem.h"

#include <cerrno>
#include <system_error>

namespace vell::headless {

Problem systemProblem(const std::string& what) {
  return Problem(what + ": " + std::generic_category().message(errno));
}

}  // namespace vell::headless
