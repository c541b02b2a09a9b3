#pragma once

#include "ipc/methods.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellUpdateEditor {
  using Record = ipc::EditorUpdate;
  static constexpr const char* name = "vell_update_editor";
  static constexpr const char* title = "Update Editor";
  static constexpr Hints hints = {.idempotent = true};
  static constexpr const char* description =
      "Update the document's frontmost editor view state — focus, fold, and selection in one call. Every "
      "field is optional; pass any combination. Operations apply in a fixed order per call: **focus → fold → "
      "selection** so the caret ends where the caller intended after any reframing.\n\nFocus:\n- `focus`: "
      "row ref → drill into that row.\n\nFold (view-only — no model mutation, no undo entry):\n- `expand` / "
      "`collapse`: row refs to unfold / fold (direct children only).\n\nSelection:\n- `selectRow`: row ref "
      "to put the selection on.\n- `selectHead`: optional far end of a block range; requires "
      "`selectRow`.\n\nReturns the post-update snapshot in the same shape as `vell_get_editor`.";

  static mcp::Parameters<Record> parameters() {
    return mcp::Parameters<Record>()
        .optional("focus", &Record::focus,
                  "Focus into this row (row ref: session id, persistent id, `@selection`, or `@focused`).")
        .optional("selectRow", &Record::selectRow, "Move the selection onto this row.")
        .optional("selectHead", &Record::selectHead, "Optional selection head row. Requires `selectRow`.")
        .optional("expand", &Record::expand, "Row ids to expand (direct children only).")
        .optional("collapse", &Record::collapse, "Row ids to collapse (direct children only).")
        .optional("outline", &Record::outline, "Optional outline persistent id (default: frontmost).");
  }
};

}  // namespace vell::tools
