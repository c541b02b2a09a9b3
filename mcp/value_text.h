#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "mcp/value.h"

namespace vell::mcp {

/// A text that is not one JSON value; `what()` says where and why.
class DecodeError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Levels of nesting beyond which a text is refused.
inline constexpr int maxDepth = 1000;

/// Numbers without fraction or exponent that fit become integers, all others doubles. The last of repeated
/// keys counts. Throws DecodeError.
Value decode(std::string_view text);

/// Compact JSON on one line, keys in byte order. Text that is not UTF-8 comes out with U+FFFD in place of
/// each bad byte; a number that is not finite as null.
std::string encode(const Value& value);
void encode(const Value& value, std::string& out);

/// Appends a value as compact JSON: large ones are written once, where they go out.
using ValueWriter = std::function<void(std::string& out)>;

/// The text as a JSON string with its quotes, in one pass over it.
void encodeString(std::string_view text, std::string& out);

}  // namespace vell::mcp
