#pragma once

#include "ipc/methods.h"
#include "tools/arguments.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellCreateRow {
  using Record = ipc::RowCreate;
  static constexpr const char* name = "vell_create_row";
  static constexpr const char* title = "Create Row";
  static constexpr Hints hints = {};
  static constexpr const char* description =
      "Create one new row from a Vell-flavored markdown string. By default appended to the outline root. An "
      "empty / whitespace-only `markdown` inserts a blank row. The markdown must be single-line: a single "
      "trailing newline is stripped, any other newline is rejected — use `vell_create_rows` (plural) for "
      "multi-row or hierarchical input. Row type / persistent id / attributes come from the markdown itself: "
      "heading syntax (`# foo`) sets type=heading; the row trailer `{#my-pid type=task color=red}` sets the "
      "persistent id, row type, and attributes. Returns the new row as `{id, persistentId?, type, text, "
      "attributes?, created, modified}` — the runtime/session shape (same as `vell_get_outline` with "
      "`output: session`, no `children` array). `id` is the live session id (numeric, UInt32); "
      "`persistentId` is the optional pid string (omitted when the row has none); `attributes` is omitted "
      "when empty.";

  static mcp::Parameters<Record> parameters() {
    return withPlace(
        mcp::Parameters<Record>().required(
            "markdown", &Record::markdown,
            "The row, as a Vell-flavored markdown string. Type / persistent-id / attributes come from "
            "the markdown itself (heading syntax + `{#pid type=... key=value}` trailer)."),
        "row ref: session id, persistent id, `@selection`, or `@focused`");
  }
};

}  // namespace vell::tools
