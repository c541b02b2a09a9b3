#pragma once

#include <string>
#include <string_view>

#include "formats/document.h"

namespace vell::formats {

/// Appends a JSON string literal. `text` is UTF-8.
void appendJsonString(std::string& out, std::string_view text);
/// Appends {"key":"value",…}.
void appendJsonObject(std::string& out, const Attributes& attributes);
/// Appends an array of runs: [{"string":"…","attrs":{…}},…].
void appendJsonRuns(std::string& out, const Text& text);

}  // namespace vell::formats
