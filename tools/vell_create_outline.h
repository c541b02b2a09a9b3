#pragma once

#include <optional>
#include <string>

#include "ipc/methods.h"
#include "outlines/creation.h"
#include "outlines/location.h"
#include "tools/arguments.h"
#include "tools/declared_tool.h"

namespace vell::tools {

struct VellCreateOutline {
  struct Record {
    std::optional<std::string> path;
    std::optional<std::string> format;
  };
  static constexpr const char* name = "vell_create_outline";
  static constexpr const char* title = "Create Outline";
  static constexpr Hints hints = {};
  static constexpr const char* description =
      "Create a new outline. Without `path`: equivalent to File → New — opens an empty Untitled outline in "
      "Vell, no file on disk (`fileURL` is `null` until the user saves). With `path`: writes a new empty "
      "file to that absolute path and opens it; refuses to overwrite an existing file. `format` (`vell`, "
      "`markdown`, `opml`, `txt`, or `json`) overrides the default — defaults to `vell` for Untitled, or the "
      "path's extension (txt if unknown) when `path` is set. Returns `{persistentId, displayName, fileURL}`. "
      "Use the returned `persistentId` as `outline` on subsequent calls.";

  static mcp::Parameters<Record> parameters() {
    return mcp::Parameters<Record>()
        .optional("path", &Record::path,
                  "Optional absolute filesystem path. When given, write a new empty file there and open it. "
                  "Without it, an Untitled doc opens in Vell.")
        .optional<VellNewOutlineFormat>("format", &Record::format,
                                        "File format. Defaults: `vell` for Untitled; for path mode, derived "
                                        "from the path's extension (txt if unknown).");
  }

  static void perform(const Record& record, const Services& services, const mcp::ToolCallPtr& call) {
    if (!record.path) return forward(services, ipc::OutlineNew{record.format.value_or("vell")}, call);
    open(
        services,
        [record](ipc::Application& application, const outlines::OpenOptions& options) {
          const std::string path = outlines::absolutize(*record.path);
          const std::string format = record.format.value_or(outlines::formatForPath(path));
          return outlines::createOutlineFile(application, path, format, options);
        },
        call);
  }
};

}  // namespace vell::tools
