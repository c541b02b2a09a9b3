#pragma once

#include <cstddef>

namespace vell::platform {

/// Lets the process keep up to that many bytes of freed memory for what it does next. Otherwise large blocks
/// go back to the system at once, and getting them anew costs a server more than the work in them.
void keepFreedMemory(std::size_t bytes);

}  // namespace vell::platform
