#pragma once

#include <string>
#include <string_view>

namespace vell::outline_path {

/// What to say of a path that has selected nothing: a sentence for a step such as `//tasks`, which searches
/// for text where a type test was probably meant. Empty where there is none, and for what does not parse.
std::string hintForNoMatch(std::string_view path);

}  // namespace vell::outline_path
