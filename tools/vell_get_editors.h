#pragma once

#include "ipc/methods.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellGetEditors {
  using Record = ipc::EditorList;
  static constexpr const char* name = "vell_get_editors";
  static constexpr const char* title = "Get Editors";
  static constexpr Hints hints = {.readOnly = true, .idempotent = true};
  static constexpr const char* description =
      "Shallow enumeration of every open editor across all windows, frontmost first (window z-order). One "
      "entry per editor — not per outline — so an outline open in two windows shows up twice with distinct "
      "`id`s. Each entry is `{id, outlineId}`: `id` is the editor's UUID; `outlineId` is the persistent id "
      "of the outline it edits. For the full editor state (focus, selection, fold), call `vell_get_editor`. "
      "Returns `[]` when Vell isn't running.";

  static mcp::Parameters<Record> parameters() { return mcp::Parameters<Record>(); }

  static void perform(const Record& record, const Services& services, const mcp::ToolCallPtr& call) {
    forward(services, record, call, WhenNotRunning::emptyList);
  }
};

}  // namespace vell::tools
