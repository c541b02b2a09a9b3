#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace vell::platform {

/// Exchanges two files in one step, so that nothing that others write into either of them is lost. False,
/// with nothing changed, where one is missing or the file system cannot do it.
bool swapFiles(const std::string& one, const std::string& other);

/// The absolute paths of the files that the system knows under a persistent identifier, likeliest first.
/// They may be out of date. A disk-wide search ends after that long, with what it has found so far.
std::vector<std::string> findFilesByIdentifier(const std::string& identifier,
                                               std::chrono::duration<double> limit = std::chrono::seconds(5));

}  // namespace vell::platform
