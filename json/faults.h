#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vell::json {

/// Finds by a slow second look what is wrong with the bytes of a text that the tokenizer refused: not UTF-8,
/// a control character in a string, a string without an end, or nothing but blanks. Throws ParseError.
[[noreturn]] void throwTextFault(std::string_view text);

/// How a message names what stands at an offset: `"x"`, `the character "é"`, `byte 0x01`, "the end of the
/// text".
std::string describeAt(std::string_view text, std::size_t offset);

}  // namespace vell::json
