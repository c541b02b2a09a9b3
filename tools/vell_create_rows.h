#pragma once

#include "ipc/methods.h"
#include "tools/arguments.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellCreateRows {
  using Record = ipc::RowCreateMany;
  static constexpr const char* name = "vell_create_rows";
  static constexpr const char* title = "Create Rows";
  static constexpr Hints hints = {};
  static constexpr const char* description =
      "Parse a Vell-flavored markdown body into a row hierarchy and insert it at the requested location in "
      "one transaction (one undo step). Top-level rows in the markdown become siblings under the chosen "
      "parent (or adjacent to the chosen sibling); their nested children follow. Persistent ids declared "
      "inline via `{#pid ...}` trailers are honored. Returns every newly inserted row (top-level + "
      "descendants) in outline order, each as `{id, persistentId?, type, text, attributes?, created, "
      "modified}` — the runtime/session shape (same as `vell_get_outline` with `output: session`, no "
      "`children` array). `id` is the live session id (numeric, UInt32); `persistentId` is the optional pid "
      "string (omitted when the row has none); `attributes` is omitted when empty. Use `vell_create_row` for "
      "a single row when you don't need a hierarchy.";

  static mcp::Parameters<Record> parameters() {
    return withPlace(
        mcp::Parameters<Record>().required("markdown", &Record::markdown,
                                           "Multi-line Vell-flavored markdown body to parse into rows."),
        "row ref");
  }
};

}  // namespace vell::tools
