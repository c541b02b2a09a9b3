#pragma once

#include <map>
#include <optional>
#include <string>

namespace vell::platform {

/// The strings that stand under string keys in a property list's outermost dictionary, XML or binary.
/// None where the file cannot be read or holds no dictionary.
std::optional<std::map<std::string, std::string>> readPropertyListStrings(const std::string& path);

}  // namespace vell::platform
