#include "platform/find_by_identifier.h"

#include "platform/identifier_index.h"

namespace vell::platform {

std::vector<std::string> findFilesByIdentifier(const std::string& identifier) {
  return IdentifierIndex().find(identifier);
}

}  // namespace vell::platform
