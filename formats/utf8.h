#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vell::formats {

/// The byte at which `text` stops being UTF-8; npos when all of it is.
std::size_t firstInvalidUtf8(std::string_view text);

/// Appends a Unicode scalar value.
void appendUtf8(std::string& out, std::uint32_t character);

}  // namespace vell::formats
