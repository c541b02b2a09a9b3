#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "platform/descriptor.h"

namespace vell::headless {

/// Asks the application at the other end of `socket` to open the files (absolute paths) and waits for its
/// answer. Returns what it says about files that did not open, a line each. Throws Problem where it does not
/// answer.
std::vector<std::string> handOver(const std::vector<std::string>& paths, const platform::Descriptor& socket,
                                  std::chrono::milliseconds limit);

}  // namespace vell::headless
