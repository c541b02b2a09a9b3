#pragma once

#include "ipc/methods.h"
#include "tools/arguments.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellMoveRows {
  using Record = ipc::RowMove;
  static constexpr const char* name = "vell_move_rows";
  static constexpr const char* title = "Move Rows";
  static constexpr Hints hints = {.idempotent = true};
  static constexpr const char* description =
      "Move one or more rows to a new parent or sibling position. Specify `to` (new parent) plus optional "
      "`position`, or `before`/`after` (sibling-relative). Returns an array of moved row objects in their "
      "post-move state — each as `{id, persistentId?, type, text, attributes?, created, modified}` — the "
      "runtime/session shape (same as `vell_get_outline` with `output: session`, no `children` array). `id` "
      "is the live session id (numeric, UInt32); `persistentId` is the optional pid string (omitted when the "
      "row has none); `attributes` is omitted when empty. Moves the given rows as a single block to one "
      "destination.";

  static mcp::Parameters<Record> parameters() {
    return mcp::Parameters<Record>()
        .optional("outline", &Record::outline, "Optional outline persistent id (default: frontmost).")
        .required("rows", &Record::rows,
                  "Row ids to move (row refs: session ids, persistent ids, `@selection`, or `@focused`).")
        .optional(
            "to", &Record::to,
            "Destination parent row id (row ref: session id, persistent id, `@selection`, or `@focused`).")
        .optional<Position>("position", &Record::position,
                            "Position under the new parent: `start`, `end` (default), or an integer index.")
        .optional("before", &Record::before,
                  "Move before this sibling row id (row ref: session id, persistent id, `@selection`, or "
                  "`@focused`).")
        .optional("after", &Record::after,
                  "Move after this sibling row id (row ref: session id, persistent id, `@selection`, or "
                  "`@focused`).");
  }
};

}  // namespace vell::tools
