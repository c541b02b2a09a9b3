#pragma once

#include <string>
#include <string_view>

// Numbers and strings as they are written.

namespace vell::outline_path {

/// The value of decimal digits with an optional fraction; infinite where a double cannot hold it.
double numberOf(std::string_view digits);
/// The shortest such text that reads back as `number`, which is finite and not negative.
std::string textOf(double number);

/// The text of a string of the language, quotes included.
std::string decodeString(std::string_view quoted);
/// `text` as a string of the language, quotes included.
std::string encodeString(std::string_view text);

}  // namespace vell::outline_path
