#pragma once

#include <string>
#include <string_view>

namespace vell::formats {

/// The value of a key as YAML reads it back as this very string. `before` is the value that stood there: a
/// number, a date, "true" or "null" stays without quotes where another one stood without them.
std::string yamlValue(std::string_view value, std::string_view before);

}  // namespace vell::formats
