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
/// What stands before it; "." where that is nothing.
std::string folderOf(const std::string& path);

/// The three in a row, as a name that every file system takes: of `middle` whole characters are left out at
/// its end where the name would be longer than 255 bytes.
std::string fittedName(std::string_view start, std::string_view middle, std::string_view end);

}  // namespace vell::headless
