#include "platform/swap_files.h"

#include <fcntl.h>
#include <stdio.h>  // NOLINT(modernize-deprecated-headers): both ways are declared in the system's own header

namespace vell::platform {

bool swapFiles(const std::string& one, const std::string& other) {
#if defined(RENAME_EXCHANGE)
  return renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
#elif defined(RENAME_SWAP)
  return renamex_np(one.c_str(), other.c_str(), RENAME_SWAP) == 0;
#else
  return one.empty() && other.empty();
#endif
}

}  // namespace vell::platform
