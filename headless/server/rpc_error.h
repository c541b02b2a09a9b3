#pragma once

#include <stdexcept>
#include <string>

namespace vell::headless {

/// The codes that JSON-RPC 2.0 reserves.
enum class RpcCode : int {
  parseError = -32700,
  invalidRequest = -32600,
  methodNotFound = -32601,
  invalidParams = -32602,
  internalError = -32603,
  /// The application understood the request and cannot do it.
  application = -32000,
};

/// A request's failure as its sender sees it.
class RpcError : public std::runtime_error {
 public:
  RpcError(RpcCode code, const std::string& message) : std::runtime_error(message), code_(code) {}

  RpcCode code() const { return code_; }

 private:
  RpcCode code_;
};

}  // namespace vell::headless
