#pragma once

#include <string>
#include <string_view>

namespace vell::outline_path {

/// The value of decimal digits with an optional fraction; infinite where a double cannot hold it.
double numberOf(std::string_view digits);
/// The shortest such text that reads back as `number`, which is finite and not negative.
std::string textOf(double number);

}  // namespace vell::outline_path
