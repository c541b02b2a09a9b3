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

/// The rows of those references, every row where there are none. Throws Problem.
formats::PlacedRows placeRefs(const OpenOutline& opened, const std::vector<std::string>& refs,
                              formats::Shape shape);

/// The rows that the path selects. Throws Problem where it is not valid or selects a value.
formats::PlacedRows placePath(const OpenOutline& opened, const std::string& path, formats::Shape shape);

/// The JSON text of those rows: a value, or for text formats one string.
std::string render(const OutlineView& view, const Outline& outline, const formats::PlacedRows& rows);

}  // namespace vell::headless
