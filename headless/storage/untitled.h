#pragma once

#include <string>
#include <vector>

namespace vell::headless {

/// A path in the directory, "Untitled <number>.vell", at which there is no file.
std::string freeUntitledPath(const std::string& directory);

/// The untitled outlines kept in the directory, the lowest number first; empty where there is no directory.
std::vector<std::string> untitledFiles(const std::string& directory);

/// Removes the file; no file is as good. Throws Problem.
void removeFile(const std::string& path);

}  // namespace vell::headless
