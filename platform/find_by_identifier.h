#pragma once

#include <string>
#include <vector>

namespace vell::platform {

/// The absolute paths of the files that the system knows under a persistent identifier, likeliest first.
/// They may be out of date. May take as long as a disk-wide search.
std::vector<std::string> findFilesByIdentifier(const std::string& identifier);

}  // namespace vell::platform
