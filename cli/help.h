#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "cli/command.h"

namespace vell::cli {

inline constexpr std::size_t screenWidth = 80;

/// How an option is written: "-o, --output <output>", "--pretty" or "<path>".
std::string optionLabel(const Option& option);

/// The forms of the command's line; the first begins with the prefix, further lines stand below its end.
std::string usageLines(const Command& command, const std::string& path, std::string_view prefix);

/// Everything `--help` tells about a command, at most `screenWidth` columns wide.
std::string helpScreen(const Command& command, const std::string& path);

/// What standard error says of a command line that cannot be run.
std::string usageReport(const Command& command, const std::string& path, std::string_view message);

}  // namespace vell::cli
