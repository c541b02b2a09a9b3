#pragma once

#include "outlines/opening.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellOpenOutline {
  struct Record {
    std::string path;
  };
  static constexpr const char* name = "vell_open_outline";
  static constexpr const char* title = "Open Outline";
  static constexpr Hints hints = {.idempotent = true};
  static constexpr const char* description =
      "Open an outline by filesystem path or persistent id and bring it to front. Accepts any file Vell can "
      "read (`.vell`, `.md`, `.html`, `.opml`, `.txt`). Pass `id:<outline-id>` to open by persistent id "
      "instead — resolved disk-wide via Spotlight. If the outline is already open, the existing outline is "
      "returned (same `persistentId`). Markdown files trigger Vell's import-confirmation sheet — the call "
      "resumes after the user dismisses it. Returns `{persistentId, displayName, fileURL}`.";

  static mcp::Parameters<Record> parameters() {
    return mcp::Parameters<Record>().required("path", &Record::path, "Filesystem path or `id:<outline-id>`.");
  }

  static void perform(const Record& record, const Services& services, const mcp::ToolCallPtr& call) {
    open(
        services,
        [path = record.path](ipc::Application& application, const outlines::OpenOptions& options) {
          return outlines::openOutline(application, path, options);
        },
        call);
  }
};

}  // namespace vell::tools
