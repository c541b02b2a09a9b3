#pragma once

#include <string>
#include <utility>

#include "mcp/parameters.h"
#include "tools/arguments.h"

namespace vell::tools {

/// Adds where new rows go: the outline and the place in it. `siblingRef` says what names a sibling.
template <class Record>
mcp::Parameters<Record> withPlace(mcp::Parameters<Record> parameters, const std::string& siblingRef) {
  const std::string behind =
      " this sibling row (" + siblingRef + "). Takes precedence over `parent`+`position`.";
  return std::move(parameters)
      .optional("outline", &Record::outline, "Optional outline persistent id (default: frontmost).")
      .optional("parent", inPlace(&ipc::RowPlace::parent),
                "Optional parent row id (row ref: session id, persistent id, `@selection`, or `@focused`). "
                "Defaults to the outline root.")
      .template optional<Position>(
          "position", inPlace(&ipc::RowPlace::position),
          "Where among the parent's children: `start`, `end` (default), or an integer index.")
      .optional("before", inPlace(&ipc::RowPlace::before), "Insert before" + behind)
      .optional("after", inPlace(&ipc::RowPlace::after), "Insert after" + behind);
}

}  // namespace vell::tools
