#include "platform/allocator.h"

#if __has_include(<malloc.h>)
#include <malloc.h>
#endif

namespace vell::platform {

void keepFreedMemory([[maybe_unused]] std::size_t bytes) {
#ifdef M_TRIM_THRESHOLD
  mallopt(M_TRIM_THRESHOLD, static_cast<int>(bytes));
  mallopt(M_MMAP_THRESHOLD, static_cast<int>(bytes));
#endif
}

void returnFreedMemory() {
#ifdef M_TRIM_THRESHOLD
  malloc_trim(0);
#endif
}

}  // namespace vell::platform
