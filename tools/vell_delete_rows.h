#pragma once

#include "ipc/methods.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellDeleteRows {
  using Record = ipc::RowDelete;
  static constexpr const char* name = "vell_delete_rows";
  static constexpr const char* title = "Delete Rows";
  static constexpr Hints hints = {.destructive = true};
  static constexpr const char* description =
      "Delete one or more rows by id. Returns `{deleted}` — the total number of rows removed.";

  static mcp::Parameters<Record> parameters() {
    return mcp::Parameters<Record>()
        .optional("outline", &Record::outline, "Optional outline persistent id (default: frontmost).")
        .required("rows", &Record::rows,
                  "Row ids to delete (row refs: session ids, persistent ids, `@selection`, or `@focused`).");
  }
};

}  // namespace vell::tools
