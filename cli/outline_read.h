#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/options.h"

namespace vell::cli {

enum class OutputFormat { json, session, markdown, vell, opml, txt };
enum class RowShape { tree, flat };

inline constexpr std::string_view outputFormatNames[] = {"json", "session", "markdown",
                                                         "vell", "opml",    "txt"};
inline constexpr std::string_view rowShapeNames[] = {"tree", "flat"};

std::string name(OutputFormat format);
std::string name(RowShape shape);
/// Whether a read in that format comes as one text rather than as JSON.
bool isText(OutputFormat format);

inline constexpr Option shapeOption{
    .name = "--shape",
    .value = "shape",
    .help = "Row shape: tree (default, nested under matched ancestors) or flat (no nesting).",
    .choices = rowShapeNames};
inline constexpr Option outputOption{
    .name = "--output",
    .shortName = "-o",
    .value = "output",
    .help =
        "Output format: session (default), markdown, vell, opml, json, or txt. See `vell --help` for the "
        "OUTPUT FORMATS section.",
    .choices = outputFormatNames};

/// The options of every command that reads an outline.
struct OutlineReadCommonOptions {
  OutlineReadCommonOptions(const Arguments& arguments, Console& console);

  GlobalOptions global;
  std::optional<std::string> outline;
  RowShape shape;
  OutputFormat output;
};

/// Reads the rows that the references name (none: every row) and prints them, without the document around
/// them when `rowsOnly`.
void fetchOutline(const OutlineReadCommonOptions& options, std::vector<std::string> refs, bool rowsOnly,
                  Console& console);

/// Writes a text as it is, anything else as indented JSON; then a line feed.
void writeEncoded(const json::Node& data, Console& console);

}  // namespace vell::cli
