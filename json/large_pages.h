#pragma once

#include <cstddef>

namespace vell::json {

/// Tells the system that a block of memory will be filled from end to end, where it can make use of that:
/// with pages of 4 KB, handing out a large block costs as much as working on it. Small blocks are left alone.
void preferLargePages(void* begin, std::size_t size);

}  // namespace vell::json
