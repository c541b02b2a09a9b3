#include "platform/swap_files.h"

#include <fcntl.h>

#include <cstdio>

namespace vell::platform {

bool swapFiles(const std::string& one, const std::string& other) {
  return renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
}

}  // namespace vell::platform
