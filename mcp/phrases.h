#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Pieces of messages that let a caller repair a call.
namespace vell::mcp {

/// "a", "a or b", "a, b or c".
std::string listOf(const std::vector<std::string>& texts, const std::string& conjunction);

/// The candidate that the name most likely stands for; none where nothing is near.
std::optional<std::string> nearest(std::string_view name, const std::vector<std::string>& candidates);

}  // namespace vell::mcp
