#pragma once

#include <string>
#include <string_view>

#include "formats/rows.h"

namespace vell::formats {

/// What a line feed in inline source is: text, or, where the source is a paragraph of several lines, a line
/// break. A break reads as a blank; as a line feed where two blanks or a backslash stand before it.
enum class LineFeeds { text, breaks };

/// Reads inline markdown: **strong** _em_ `code` ~~s~~ ==mark== [text](url) [text]{key=value} <url>,
/// backslash escapes and `&#10;` character references. Images, html and all else is text as it stands. Never
/// fails: what is no markup is text. Linear in the source.
Text parseInline(std::string_view source, LineFeeds lineFeeds = LineFeeds::text);

/// Appends the text as inline markdown that parseInline reads back as the very same runs, free of line feeds
/// and control characters, without blanks at its ends, and never ending in a "}" that could close a braced
/// list of its own.
void appendInline(std::string& out, const Text& text);

/// Inline markdown that parseInline reads as exactly `now`, keeping of `source` what still means the same:
/// all of it where nothing changed. What it keeps may hold line feeds; what it adds is as appendInline writes
/// it.
std::string rewriteInline(std::string_view source, const Text& now, LineFeeds lineFeeds = LineFeeds::text);

// What the readers and writers of inline markdown and of lines around it must agree on.

/// ASCII punctuation: what a backslash takes its meaning from.
bool isPunctuation(char c);
bool isBlank(char c);
/// ASCII letters and digits, and every byte of a character beyond ASCII.
bool isWordByte(char c);
bool isControl(char c);

/// Without the blanks at its ends.
std::string_view trim(std::string_view text);
std::string_view trimEnd(std::string_view text);

/// How often the character at `at` is repeated from there on.
std::size_t runLength(std::string_view source, std::size_t at);

/// The style of a mark: "**" and "__" strong, "*" and "_" em, "~~" s, "==" mark.
Attributes styleOf(std::string_view mark);
/// The mark that is written for a style's key; empty where it has none.
std::string_view markOf(std::string_view key);

/// Decodes a numeric character reference at the front (`&#10;`, `&#xA;`); bytes taken, 0 where there is none.
std::size_t decodeReference(std::string_view source, std::string& out);
void appendReference(std::string& out, char c);

}  // namespace vell::formats
