#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace vell::json {

/// A text that is not JSON. `what()` names the fault and the byte offset at which it stands.
class ParseError : public std::runtime_error {
 public:
  ParseError(const std::string& fault, std::size_t offset)
      : std::runtime_error("Invalid JSON at byte " + std::to_string(offset) + ": " + fault),
        fault_(fault),
        offset_(offset) {}

  /// What is wrong, without the place.
  const std::string& fault() const { return fault_; }
  /// Bytes from the start of the text.
  std::size_t offset() const { return offset_; }

 private:
  std::string fault_;
  std::size_t offset_;
};

}  // namespace vell::json
