#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vell::cli {

inline constexpr std::size_t screenWidth = 80;

/// Appends the text with every line indented by `indent` spaces and broken at blanks before `screenWidth`.
/// Lines of the text stay lines; one that is indented itself keeps its indentation, also where it is
/// continued. The first line goes on where `out` stands, which is column `column`.
void appendWrapped(std::string& out, std::string_view text, std::size_t indent, std::size_t column);

/// The text as a paragraph of its own.
std::string paragraph(std::string_view text, std::size_t indent);

}  // namespace vell::cli
