#pragma once

#include <string>
#include <string_view>

#include "formats/document.h"

namespace vell::formats {

/// Reads one line of inline markdown: **strong** _em_ `code` ~~s~~ ==mark== [text](url) [text]{key=value},
/// backslash escapes and `&#10;` character references. Never fails: what is no markup is text. Linear in the
/// source.
Text parseInline(std::string_view source);

/// Appends the text as inline markdown that parseInline reads back as the very same runs, free of line feeds
/// and control characters, without blanks at its ends, and never ending in a "}" that could close a braced
/// list of its own.
void appendInline(std::string& out, const Text& text);

}  // namespace vell::formats
