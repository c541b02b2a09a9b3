#pragma once

#include <string>
#include <string_view>

namespace vell::outline_path {

/// Parses `text`, a path or a value, and returns its tree, or the tree of what could be read and the error.
/// Blanks around it do not count; where there is nothing else the cookbook is returned. Never fails.
std::string checkOutlinePath(std::string_view text);

}  // namespace vell::outline_path
