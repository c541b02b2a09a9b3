#pragma once

#include <vector>

#include "formats/rows.h"

namespace vell::formats {

/// A stretch that two texts have in common, in the same style.
struct CommonStretch {
  std::size_t oldBegin;
  std::size_t nowBegin;
  std::size_t length;  ///< bytes; whole characters
};

/// What the texts have in common at their ends and around words that stand once between, in order. The first
/// stretch is at the front of both and the last at the end of both; these may be empty.
std::vector<CommonStretch> commonStretches(const Text& old, const Text& now);

}  // namespace vell::formats
