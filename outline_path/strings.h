#pragma once

#include <string>
#include <string_view>

namespace vell::outline_path {

/// The text of a string as the grammar matched it, quotes included.
std::string decodeString(std::string_view quoted);
/// `text` as a string of the language, quotes included.
std::string encodeString(std::string_view text);

}  // namespace vell::outline_path
