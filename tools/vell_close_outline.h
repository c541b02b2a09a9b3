#pragma once

#include "ipc/methods.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellCloseOutline {
  using Record = ipc::OutlineClose;
  static constexpr const char* name = "vell_close_outline";
  static constexpr const char* title = "Close Outline";
  static constexpr Hints hints = {.destructive = true};
  static constexpr const char* description =
      "Close one outline (frontmost by default; pass `outline` to target another). Default is "
      "non-destructive — Vell will prompt the user if the document has unsaved changes. With `discard: "
      "true`, clears the edit flag, deletes any autosave, and (only when the underlying file is named "
      "`Untitled NN.vell`) removes that file too — a filename guard prevents `discard` from wiping a "
      "user-named doc. Returns `{closed: true}`.";

  static mcp::Parameters<Record> parameters() {
    return mcp::Parameters<Record>()
        .optional("outline", &Record::outline,
                  "Optional persistent id of the outline. Defaults to the frontmost outline.")
        .optional("discard", &Record::discard,
                  "Discard unsaved changes; also delete any autosaved file and (when named `Untitled "
                  "NN.vell`) the underlying file. Default: false.");
  }
};

}  // namespace vell::tools
