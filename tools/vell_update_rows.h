#pragma once

#include <stdexcept>

#include "ipc/methods.h"
#include "tools/arguments.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellUpdateRows {
  using Record = ipc::RowUpdate;
  static constexpr const char* name = "vell_update_rows";
  static constexpr const char* title = "Update Rows";
  static constexpr Hints hints = {.destructive = true};
  static constexpr const char* description =
      "Update one or more rows by ref, applying the same field updates to every target in a single "
      "transaction (one undo step). Use `text` to replace the text, or `append`/`prepend` for partial edits. "
      "All three accept **either form**: (1) a Vell-flavored markdown string (`**bold**`, `_italic_`, "
      "`~~strike~~`, `==mark==`, `` `code` ``, `[text](url)`, `[text]{attr=value}`); or (2) a JSON array of "
      "structured runs matching the shape `vell_get_outline` returns — `[{string, attrs?}, ...]`. The two "
      "forms are sniffed on shape: a string is markdown; an array is structured runs. `append`/`prepend` are "
      "concatenated at the rich-text level, so adjacent spans don't re-parse incorrectly. Each entry of "
      "`rows` is a row ref: a session id (numeric), a persistent id (string), or the sentinels `@selection` "
      "(the row containing the caret) and `@focused` (the focused-in row or root). Attribute updates patch "
      "in place — `attributes` keys not mentioned are left untouched; pass `null` as a value to remove a "
      "key. `persistentId` requires exactly one ref (a persistent id is unique per outline; assigning it to "
      "N rows is meaningless). Returns an array of `{row, fieldErrors?}` entries — one per input ref, in "
      "order — where `row` is the post-state and `fieldErrors` lists any per-field rejections (omitted when "
      "empty).";

  static mcp::Parameters<Record> parameters() {
    return mcp::Parameters<Record>()
        .required("rows", &Record::rows,
                  "Row refs. Each is a session id (numeric), a persistent id (string), or the sentinels "
                  "`@selection` / `@focused`.")
        .optional("outline", &Record::outline, "Optional outline persistent id (default: frontmost).")
        .optional<McpTextInput>(
            "text", &Record::text,
            "Replace the row's text. Vell-flavored markdown, OR a JSON array of structured runs (`[{string, "
            "attrs?}, ...]`) — same shape `vell_get_outline` returns.")
        .optional<McpTextInput>("append", &Record::append,
                                "Append to the row's text. Same input forms as `text` (markdown string or "
                                "JSON array of runs). Mutually exclusive with `text`/`prepend`.")
        .optional<McpTextInput>("prepend", &Record::prepend,
                                "Prepend to the row's text. Same input forms as `text` (markdown string or "
                                "JSON array of runs). Mutually exclusive with `text`/`append`.")
        .optional("type", &Record::type,
                  "Row type. One of: `body`, `heading`, `task`, `note`, `quote`, `code`, `hr`, `ordered`, "
                  "`unordered`. Switching to a type that has no text content (e.g. `hr`) replaces the row's "
                  "text; the previous text is recoverable via undo in Vell.")
        .optional("attributes", &Record::attributes,
                  "Attribute map. String values set the attribute; null values remove it.")
        .optional("persistentId", &Record::persistentId,
                  "Assign a cross-session handle. Requires exactly one entry in `rows`. Transfer semantics: "
                  "if another row currently holds this persistentId, it loses it silently. Pick a value you "
                  "know is unused (or query first).");
  }

  static void perform(const Record& record, const Services& services, const mcp::ToolCallPtr& call) {
    if (record.persistentId && record.rows.size() != 1) {
      throw std::invalid_argument("persistentId requires exactly one row.");
    }
    forward(services, record, call);
  }
};

}  // namespace vell::tools
