#pragma once

#include "ipc/methods.h"
#include "tools/arguments.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellGetOutline {
  struct Record : ipc::OutlineGet {
    Record() { format = "session"; }
  };
  static constexpr const char* name = "vell_get_outline";
  static constexpr const char* title = "Get Outline";
  static constexpr Hints hints = {.readOnly = true, .idempotent = true};
  static constexpr const char* description =
      "Read a Vell outline as an encoded document, optionally narrowed to specific row refs. `refs` accepts "
      "an array of session ids (numeric), persistent ids (string), OutlinePath expressions (start with `/`, "
      "e.g. `//heading`, `//task`, `/*`), or the sentinels `@selection` / `@focused`. With no refs every row "
      "is returned (equivalent to `//*`). By default the response is the full document (frontmatter + "
      "matching rows); pass `rows: true` to strip the document wrapper and return just the rows. JSON-shaped "
      "output is recursive: rows carry an ordered `children` array of nested row objects (omitted when "
      "empty). Filtered results project into a best-fit forest — each row attaches under its nearest matched "
      "ancestor in the underlying outline, falling back to top level when no ancestor matched. Pass `shape: "
      "flat` to discard hierarchy entirely (every matched row at top level, no `children`). `output: "
      "session` (default) is the runtime/API shape — `id` is the live session id (numeric, UInt32, always "
      "present, not stable across runs) and remains valid for follow-up calls like `vell_create_row --parent "
      "<id>`, while the persistent id (when present) moves to a `persistentId` field. `output: json` is the "
      "portable file shape — `id` is the row's persistent id (string), matching `.vell` / `.markdown` / "
      "`.opml`, and is omitted when the row has none assigned; session ids are not emitted. Use the default "
      "`session` to chain reads with follow-up mutations; use `json` only when exporting an outline you want "
      "to load back later. `text` is a JSON array of styled runs — each run is `{string, attrs?}`; runs tile "
      "the row's text in order, and `attrs` is omitted on plain runs. Concatenating each run's `string` "
      "reproduces the row's plain text. Empty text encodes as `[]`. Standard `attrs` keys: `strong` (bold, "
      "value `\"\"`), `em` (italic, `\"\"`), `code` (`\"\"`), `s` (strikethrough, `\"\"`), `mark` "
      "(highlight, `\"\"`), `a` (link, value is the URL), `base` (value `\"sub\"` or `\"sup\"`); arbitrary "
      "`\"my-key\": \"my-value\"` attributes survive round-trip too. To mutate text, see `vell_update_rows` "
      "(which accepts either the same array shape or a Vell-flavored markdown string). `attributes` is a "
      "string→string map of row-level attributes (omitted entirely when the row has none). `created` / "
      "`modified` are ISO8601 timestamps. For editor view-state (fold/focus/selection), call "
      "`vell_get_editor`.";

  static mcp::Parameters<Record> parameters() {
    return mcp::Parameters<Record>()
        .optional("outline", &Record::outline,
                  "Optional persistent id of the outline. Defaults to the frontmost outline.")
        .optional<RowRefs>(
            "refs", &Record::rowRefs,
            "Read these specific rows by ref. Each entry is a session id (numeric), a persistent id "
            "(string), an OutlinePath expression (starts with `/`, e.g. `//heading`, `//task`, `/*`), or the "
            "sentinels `@selection` / `@focused`. Omit or pass `[]` to read every row. If unsure of "
            "OutlinePath syntax, call `vell_outline_path_check` first (pass no args for the full syntax "
            "cookbook, or pass `path` to parse-validate a guess).")
        .optional<VellReadFormat>(
            "output", &Record::format,
            "Output format. `session` (default) returns the runtime/API shape (`id` = live session id, "
            "`persistentId` = optional pid) — pass this when you'll chain follow-up calls. `json` returns "
            "the portable file shape (`id` = persistent id, no session info) — pass this for "
            "export/round-trip. `markdown` returns the matching rows as Vell-flavored markdown.")
        .optional<VellRowShape>("shape", &Record::shape,
                                "Row shape. `tree` (default) nests matched rows under matched ancestors; "
                                "`flat` discards hierarchy and emits every matched row at top level.")
        .optional("rows", &Record::rows,
                  "Return only the rows, without the surrounding document structure / metadata. Default: "
                  "false (full document).");
  }
};

}  // namespace vell::tools
