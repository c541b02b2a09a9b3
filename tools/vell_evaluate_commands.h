#pragma once

#include "ipc/methods.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellEvaluateCommands {
  using Record = ipc::CommandPerform;
  static constexpr const char* name = "vell_evaluate_commands";
  static constexpr const char* title = "Evaluate Commands";
  static constexpr Hints hints = {.destructive = true};
  static constexpr const char* description =
      "Perform one or more named editor commands in order against the frontmost editor of the resolved "
      "outline. All ids are validated up front against the public command set (`vell_get_commands`) — an "
      "unknown id throws before any command runs, so the batch is all-or-nothing on validation. Execution "
      "wraps in a single transaction (one undo step). Each command sees the editor state left by the "
      "previous one. A command that runs but declines to act (e.g. `row:block-move-up` at the top of the "
      "outline) reports `performed: false` and the batch continues. Returns `[{id, performed}]` in execution "
      "order.";

  static mcp::Parameters<Record> parameters() {
    return mcp::Parameters<Record>()
        .optional("editor", &Record::editor,
                  "Optional editor id (UUID, from `vell_get_editors`). Defaults to the frontmost editor.")
        .required("ids", &Record::ids,
                  "Command id(s) to evaluate in order. Discover available ids via `vell_get_commands`.");
  }
};

}  // namespace vell::tools
