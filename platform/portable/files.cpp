#include "platform/files.h"

#include <fcntl.h>

#include <cstdio>

#include "platform/identifier_index.h"

namespace vell::platform {

bool swapFiles(const std::string& one, const std::string& other) {
  return renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
}

std::vector<std::string> findFilesByIdentifier(const std::string& identifier,
                                               std::chrono::duration<double> /*limit*/) {
  return IdentifierIndex().find(identifier);
}

}  // namespace vell::platform
