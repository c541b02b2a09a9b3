#pragma once

#include "ipc/methods.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellEvaluateScript {
  using Record = ipc::ScriptEvaluate;
  static constexpr const char* name = "vell_evaluate_script";
  static constexpr const char* title = "Evaluate Script";
  static constexpr Hints hints = {.destructive = true, .openWorld = true};
  static constexpr const char* description =
      "Evaluate JavaScript in Vell's app context (JavaScriptCore). Pure JS only — no TypeScript syntax, no "
      "`import`/ESM. The script can be a plain expression (e.g. `vell.version`) or an arrow function "
      "`(input) => { ... }` that receives the optional `input` string. The script's return value (last "
      "expression / arrow result) is stringified — objects / arrays are JSON-encoded. The app API hangs off "
      "the `vell` global; full type surface at Vell.app/Contents/Resources/scripting/vell.d.ts (`.d.ts` — "
      "translate "
      "to JS at the call site). Example: `(() => vell.frontmostOutlineEditor?.selection?.word)()`.";

  static mcp::Parameters<Record> parameters() {
    return mcp::Parameters<Record>()
        .required("script", &Record::script, "JavaScript source: expression, statement, or arrow function.")
        .optional("input", &Record::input,
                  "Optional input string forwarded to the script when it evaluates to an arrow function.");
  }
};

}  // namespace vell::tools
