#pragma once

#include "ipc/methods.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellGetEditor {
  using Record = ipc::EditorGet;
  static constexpr const char* name = "vell_get_editor";
  static constexpr const char* title = "Get Editor";
  static constexpr Hints hints = {.readOnly = true, .idempotent = true};
  static constexpr const char* description =
      "Deep snapshot of one editor (frontmost by default; pass `editor` to target a specific editor by id). "
      "Returns `{id, outlineId, focused, selection: {anchor, head, rows, text}, collapsed}`. `id` is the "
      "editor's UUID (stable while the editor exists); `outlineId` is the persistent id of the outline it "
      "edits. The same outline open in two windows has two editors with distinct ids — call "
      "`vell_get_editors` to enumerate them. All row-id fields below carry session ids (numeric, matching "
      "`id` in `vell_get_outline output: session` entries — not stable across runs). `focused` is the focus "
      "stack as an array of row session ids — always non-empty, always starting with the outline root and "
      "ending with the currently drilled-in row (length-1 means focus sits at root). `selection.anchor` and "
      "`selection.head` are the two ends of the selection — equal for a single-row (caret / text) selection, "
      "distinct for a block selection. `selection.rows` is every row covered by the selection. `collapsed` "
      "is the outline-ordered list of currently-folded row session ids. Join against `vell_get_outline` "
      "(with `output: session`) if you need row bodies addressed by session id.";

  static mcp::Parameters<Record> parameters() {
    return mcp::Parameters<Record>().optional(
        "editor", &Record::editor,
        "Optional editor id (UUID, from `vell_get_editors`). Defaults to the frontmost editor.");
  }
};

}  // namespace vell::tools
