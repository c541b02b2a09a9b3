#pragma once

namespace vell::mcp {

/// Makes a descriptor non-blocking for as long as this lives.
class NonBlocking {
 public:
  /// Throws std::system_error.
  explicit NonBlocking(int descriptor);
  ~NonBlocking();
  NonBlocking(const NonBlocking&) = delete;
  NonBlocking& operator=(const NonBlocking&) = delete;

 private:
  int descriptor_;
  int flags_;
};

/// Another descriptor of the same file, closed on exec. Throws std::system_error.
int duplicate(int descriptor);

}  // namespace vell::mcp
