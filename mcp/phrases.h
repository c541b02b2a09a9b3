#pragma once

#include <string>
#include <vector>

/// Pieces of messages that let a caller repair a call.
namespace vell::mcp {

/// "a", "a or b", "a, b or c".
std::string listOf(const std::vector<std::string>& texts, const std::string& conjunction);

}  // namespace vell::mcp
