#pragma once

#include <string>
#include <string_view>

namespace vell::mcp {

/// The bytes in base64, padded.
std::string base64(std::string_view bytes);

}  // namespace vell::mcp
