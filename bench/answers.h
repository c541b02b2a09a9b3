#pragma once

#include <cstddef>
#include <string>

namespace vell::bench {

/// Writes the list of open outlines, about 1 KB.
void writeOutlineList(const std::string& file);

/// Writes an outline of about that many bytes as the application answers it: a tree of rows whose keys are
/// not in order. Returns how many bytes were written.
std::size_t writeOutline(const std::string& file, std::size_t bytes);

}  // namespace vell::bench
