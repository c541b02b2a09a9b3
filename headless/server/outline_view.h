#pragma once

#include <string>
#include <vector>

#include "formats/format.h"
#include "headless/server/params.h"
#include "headless/storage/application.h"

namespace vell::headless {

/// How rows are rendered: the params `format`, `shape` and `rows` of reading and observing.
struct OutlineView {
  const formats::Format* format;
  formats::Shape shape;
  bool rowsOnly;
};

/// Throws RpcError(invalidParams).
OutlineView viewParams(const Params& params);

// The JSON text of rows: a value, or for text formats one string. Made beside the application.

/// Of the rows of those references, of every row where there are none. Throws Problem.
std::string renderRefs(const OutlineView& view, const OpenOutline& opened,
                       const std::vector<std::string>& refs);

/// Of the rows that the path selects. Throws Problem where it is not valid or selects a value.
std::string renderPath(const OutlineView& view, const OpenOutline& opened, const std::string& path);

/// Throws Problem where the path is not valid or does not select rows.
void checkPath(const OpenOutline& opened, const std::string& path);

}  // namespace vell::headless
