#pragma once

#include <cerrno>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include "text/edit_distance.h"

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

/// ` (did you mean "…"?)` where one of the names is near the word; else empty.
inline std::string didYouMean(std::string_view word, std::span<const std::string_view> names) {
  const std::string_view meant = text::nearest(word, names);
  return meant.empty() ? "" : " (did you mean \"" + std::string(meant) + "\"?)";
}

}  // namespace vell::headless
