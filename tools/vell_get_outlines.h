#pragma once

#include "ipc/methods.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellGetOutlines {
  using Record = ipc::OutlineList;
  static constexpr const char* name = "vell_get_outlines";
  static constexpr const char* title = "Get Outlines";
  static constexpr Hints hints = {.readOnly = true, .idempotent = true};
  static constexpr const char* description =
      "Return every outline currently open in Vell, frontmost first (window z-order). Each entry is "
      "`{persistentId, displayName, fileURL}`; `fileURL` is `null` for unsaved outlines. The frontmost "
      "outline is `result[0]`. Returns `[]` (an empty array) when Vell isn't running — a discoverability "
      "tool shouldn't error on \"app is closed\". To open a closed outline file, call `vell_open_outline` "
      "(auto-launches Vell). For an outline's body, call `vell_get_outline` with `output: markdown`, `json`, "
      "or `session`.";

  static mcp::Parameters<Record> parameters() { return mcp::Parameters<Record>(); }

  static void perform(const Record& record, const Services& services, const mcp::ToolCallPtr& call) {
    forward(services, record, call, WhenNotRunning::emptyList);
  }
};

}  // namespace vell::tools
