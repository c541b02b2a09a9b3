#pragma once

#include <string_view>

#include "formats/format.h"

namespace vell::formats {

/// A document as writeJson writes it, or an array of rows. Members of other names are passed over.
void readJson(std::string_view text, const ReadOptions& options, Outline& outline);

/// Rich text from an array of runs: [{"string":"…","attrs":{…}},…]. Throws FormatError.
Text readJsonRuns(std::string_view text);
/// An object of strings. Throws FormatError.
Attributes readJsonAttributes(std::string_view text);

}  // namespace vell::formats
