#include "json/large_pages.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace vell::json {

void preferLargePages([[maybe_unused]] void* begin, [[maybe_unused]] std::size_t size) {
#ifdef MADV_HUGEPAGE
  constexpr std::size_t worthwhile = std::size_t{4} << 20;
  if (size < worthwhile) return;
  // From the start of the block's first page: a block whose pages differ in advice can no longer grow in
  // place.
  const auto address = reinterpret_cast<std::uintptr_t>(begin);
  const std::size_t offset = address % static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  // Advice only: nothing depends on its being taken.
  madvise(reinterpret_cast<void*>(address - offset), size + offset, MADV_HUGEPAGE);
#endif
}

}  // namespace vell::json
