#pragma once

#include <string>
#include <string_view>

#include "json/document.h"
#include "json/sink.h"

namespace vell::json {

/// Compact: no blanks at all. Indented: two spaces a level, `"key": value`, one member a line.
enum class Layout { compact, indented };

/// Writes the value with keys in byte order (the last of repeated ones), numbers in their own text,
/// strings with the fewest escapes ("/" and non-ASCII characters as they are).
void write(const Node& value, Layout layout, Sink& sink);
std::string toString(const Node& value, Layout layout);

/// Parses and rewrites a whole text. Throws ParseError.
std::string rewrite(std::string_view text, Layout layout);

}  // namespace vell::json
