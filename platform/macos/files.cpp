#include "platform/files.h"

#include <stdio.h>  // NOLINT: the system's own header declares renamex_np

namespace vell::platform {

bool swapFiles(const std::string& one, const std::string& other) {
  return renamex_np(one.c_str(), other.c_str(), RENAME_SWAP) == 0;
}

}  // namespace vell::platform
