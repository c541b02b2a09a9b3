#pragma once

#include <string>
#include <string_view>

namespace vell::outline_path {

/// The help text that teaches the language by examples. No newline at its end.
std::string_view cookbook();

/// Parses `text`, a path or a value, and returns its tree, or the tree of what could be read and the error.
/// Blanks around it do not count; where there is nothing else the cookbook is returned. Never fails.
std::string checkOutlinePath(std::string_view text);

}  // namespace vell::outline_path
