#pragma once

#include <string>
#include <string_view>

#include "formats/attribute_list.h"
#include "formats/rows.h"

namespace vell::formats {

// What .vell and markdown share in how a row becomes a line.

/// The attribute that the mark of a row of that type can tell: `done` of a task ("true"), `language` of a
/// code row, `level` of a heading. Empty for other types.
std::string_view markAttribute(RowType type);
/// Gives a row that attribute, first in order, unless it has one already.
void setMarkAttribute(RowContent& row, std::string_view value);
/// Its value where the mark can stand for it, that is where it is the row's first attribute; else null.
const std::string* markAttributeValue(const Row& row);

/// What the trailer of a row has to tell; without the first attribute where the mark tells it.
RowTrailer trailerOf(const Row& row, bool markTellsAttribute);

/// True if the row can stand as lines between fences: plain text without control characters but line feeds
/// and tabs.
bool canBeFenced(const Row& row);
/// True if it can stand behind an opening fence.
bool isFenceInfo(std::string_view text);
/// A fence longer than any of that character that stands in the text.
std::string fenceFor(std::string_view text, char fence = '`');
/// Appends the text's lines, indented by that many tabs, and the closing fence.
void appendFenced(std::string& out, std::string_view text, std::string_view fence, std::size_t tabs);

/// Length of the opening fence ("```", "~~~~", …) that the line begins with; 0 if it opens none.
std::size_t openingFence(std::string_view line);
/// True if the line ends the block that `opening` (a run of fence characters) began.
bool isClosingFence(std::string_view line, std::string_view opening);

/// Bytes of an ordinal with its dot or parenthesis ("12." or "12)") at the front; 0 where there is none.
std::size_t ordinalLength(std::string_view text);

}  // namespace vell::formats
