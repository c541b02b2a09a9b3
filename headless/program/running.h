#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "json/text.h"
#include "platform/descriptor.h"

namespace vell::headless {

// The application that runs already, as another process of its user meets it.

/// Sends a request to the application at the other end of `socket`; `params` is JSON text. Returns the line
/// of its answer. Throws Problem where it does not answer.
json::Text ask(const platform::Descriptor& socket, std::string_view method, std::string_view params,
               std::chrono::milliseconds limit);

/// Has it open the files and serve the folders (absolute paths). Returns what it says about those that it
/// could not, a line each. Throws Problem where it does not answer.
std::vector<std::string> handOver(const std::vector<std::string>& paths, const platform::Descriptor& socket,
                                  std::chrono::milliseconds limit);

}  // namespace vell::headless
