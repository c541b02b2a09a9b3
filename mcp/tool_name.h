#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vell::mcp {

/// What is wrong with a tool's name, one finding a text; empty for a good name.
std::vector<std::string> validateToolName(std::string_view name);

/// The warning to log for such findings. They never keep a tool from being registered.
std::string toolNameWarning(std::string_view name, const std::vector<std::string>& findings);

}  // namespace vell::mcp
