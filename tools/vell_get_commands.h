#pragma once

#include "ipc/methods.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellGetCommands {
  using Record = ipc::CommandList;
  static constexpr const char* name = "vell_get_commands";
  static constexpr const char* title = "Get Commands";
  static constexpr Hints hints = {.readOnly = true, .idempotent = true};
  static constexpr const char* description =
      "Enumerate every public Vell editor command, sorted lexicographically by `id`. Each entry is `{id, "
      "source}` — `id` is what you pass to `vell_evaluate_commands` (e.g. `row:toggle-done`, "
      "`format:heading`, `fold:collapse-all`); `source` is the registering surface (\"Vell Menu\", an "
      "extension path, or `null` for unowned). Hidden (`:.`-prefixed) commands are filtered out. Use "
      "`vell_evaluate_commands` to invoke.";

  static mcp::Parameters<Record> parameters() { return mcp::Parameters<Record>(); }
};

}  // namespace vell::tools
