#pragma once

#include <string>

namespace vell::tools {

/// Serves the tools and resources to an MCP client on two descriptors until the input ends, the client stops
/// reading, or a signal asks the process to end, which then ends it. Replies in flight when the input ends
/// are waited for, but not long: the application may hang. Throws std::system_error for descriptors that
/// cannot be read or written.
void serveMCP(const std::string& version, int input = 0, int output = 1);

}  // namespace vell::tools
