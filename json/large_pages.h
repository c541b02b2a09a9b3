#pragma once

#include <cstddef>

namespace vell::json {

/// Tells the system that a block of memory will be filled from end to end, where it can make use of that:
/// `get outline` of 100 MB takes 0.39 s with it and 0.43 s without. Small blocks are left alone.
void preferLargePages(void* begin, std::size_t size);

}  // namespace vell::json
