#pragma once

#include <string>
#include <string_view>

namespace vell::headless {

/// Absolute (against the current directory), without ".", ".." and doubled or closing slashes. Links stay.
std::string standardisedPath(const std::string& path);

/// The path with its links resolved, as far as it exists: equal for two paths of one file.
std::string resolvedPath(const std::string& path);

/// "file:///…", percent-encoded; `path` is absolute.
std::string fileUrl(std::string_view path);

/// The last component.
std::string fileName(const std::string& path);

}  // namespace vell::headless
