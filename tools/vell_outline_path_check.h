#pragma once

#include <string>

#include "outline_path/path_check.h"
#include "tools/answer_limit.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellOutlinePathCheck {
  struct Record {
    std::string path;
  };
  static constexpr const char* name = "vell_outline_path_check";
  static constexpr const char* title = "Check Outline Path";
  static constexpr Hints hints = {.readOnly = true, .idempotent = true};
  static constexpr const char* description =
      "Parse-validate an OutlinePath expression and return the parse tree + any error — without executing it "
      "against an outline. Use this BEFORE passing a filter to `vell_get_outline` to confirm syntax, or to "
      "iterate on a guess. Call with no `path` (or empty) to retrieve the full syntax cookbook. Quick "
      "reference (OutlinePath is XPath-LIKE but **predicates are NOT wrapped in `[...]`** — brackets are "
      "slices only). Common shapes: `//*` (all rows), `//task`, `//heading`, `//task @done` (tasks with "
      "@done attribute), `//task @done = \"true\"` (compare to literal — use **double quotes**), `//heading "
      "union //task`, `//* except //hr`. Axes: `//` (any descendant), `/` (child / absolute root), `..` "
      "(parent), `.` (self), plus verbose `ancestor::`, `following-sibling::`, etc. Predicates attach to a "
      "step after whitespace: `@attr` (has attribute), `@a = \"v\"` (equals), `@n < 20`, `\"text\"` (bare "
      "string = contains-text), `not P`, `A or B`, `A and B`. Slices use `[N]` or `[start:end]`: `[0]`, "
      "`[1:5]`, `[-1]`. Returns plain text — a parse tree on success, partial tree + error on failure.";

  static mcp::Parameters<Record> parameters() {
    return mcp::Parameters<Record>().optional(
        "path", &Record::path,
        "OutlinePath expression to parse. Omit or pass empty to retrieve the full syntax cookbook.");
  }

  static void perform(const Record& record, const Services&, const mcp::ToolCallPtr& call) {
    call->answerText(shortened(outline_path::checkOutlinePath(record.path)));
  }
};

}  // namespace vell::tools
