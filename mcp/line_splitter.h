#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace vell::mcp {

/// Splits a stream of bytes into messages, one a line: a carriage return before the line feed goes with it,
/// empty lines are skipped. Linear in the bytes however they arrive.
class LineSplitter {
 public:
  /// Calls back for each message that the bytes complete; the view lives for the call.
  /// Bytes behind the last line feed wait for more.
  void feed(std::string_view bytes, const std::function<void(std::string_view)>& onMessage);

 private:
  std::string pending_;
};

}  // namespace vell::mcp
