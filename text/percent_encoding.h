#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vell::text {

/// The text with "%XX" in place of each byte that is no ASCII letter, no digit and none of `plain`.
std::string percentEncoded(std::string_view text, std::string_view plain);

/// The bytes that such a text stands for; none where two hexadecimal digits do not follow a "%".
std::optional<std::string> percentDecoded(std::string_view text);

}  // namespace vell::text
