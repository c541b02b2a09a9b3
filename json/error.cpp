#include "json/error.h"

namespace vell::json {

ParseError::ParseError(const std::string& fault, std::size_t offset)
    : std::runtime_error("Invalid JSON at byte " + std::to_string(offset) + ": " + fault),
      fault_(fault),
      offset_(offset) {}

}  // namespace vell::json
