#pragma once

#include <string_view>

namespace vell::outline_path {

/// The help text that teaches the language by examples. No newline at its end.
std::string_view cookbook();

}  // namespace vell::outline_path
