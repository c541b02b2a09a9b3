#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ipc/outline_summary.h"

namespace vell::outlines {

/// The text with every byte percent-encoded that may not stand in one segment of a URI's path, "/" included.
std::string encodePathSegment(std::string_view text);

/// The path of a file URL, or of what already is a path; none for an outline that was never saved.
std::optional<std::string> filePath(const ipc::OutlineSummary& outline);

/// The address of an open outline's resource: "vell://file/" and its path in one segment, or
/// "vell://outline/" and its persistent id.
std::string resourceURI(const ipc::OutlineSummary& outline);

}  // namespace vell::outlines
