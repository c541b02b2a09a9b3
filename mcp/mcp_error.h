#pragma once

#include <exception>
#include <optional>
#include <string>

#include "mcp/value.h"

namespace vell::mcp {

/// The one error type of this layer: a kind with its JSON-RPC code and the details of that kind.
class MCPError : public std::exception {
 public:
  enum class Kind {
    parseError,
    invalidRequest,
    methodNotFound,
    invalidParams,
    internalError,
    resourceNotFound,
    urlElicitationRequired,
    serverError,
    serverErrorWithData,
    transportError,
    requestTimeout,
    requestCancelled,
    connectionClosed,
    sessionExpired
  };
  using Detail = std::optional<std::string>;

  static MCPError parseError(Detail detail = {}) { return {Kind::parseError, std::move(detail)}; }
  static MCPError invalidRequest(Detail detail = {}) { return {Kind::invalidRequest, std::move(detail)}; }
  static MCPError methodNotFound(Detail detail = {}) { return {Kind::methodNotFound, std::move(detail)}; }
  static MCPError invalidParams(Detail detail = {}, std::optional<Value> data = {});
  static MCPError internalError(Detail detail = {}) { return {Kind::internalError, std::move(detail)}; }
  static MCPError resourceNotFound(Detail detail = {}) { return {Kind::resourceNotFound, std::move(detail)}; }
  static MCPError urlElicitationRequired(Value::Array elicitations, std::string message);
  static MCPError serverError(int code, std::string message);
  static MCPError serverErrorWithData(int code, std::string message, Value data);
  static MCPError transportError(const std::exception& underlying);
  static MCPError requestTimeout(double seconds, Detail message = {});
  static MCPError requestCancelled(Detail reason = {}) { return {Kind::requestCancelled, std::move(reason)}; }
  static MCPError connectionClosed() { return {Kind::connectionClosed, {}}; }
  static MCPError sessionExpired() { return {Kind::sessionExpired, {}}; }

  /// The error of an error object; a code that no kind has gives a server error.
  static MCPError fromError(int code, std::string message, std::optional<Value> data = {});

  Kind kind() const { return kind_; }
  int code() const;
  const char* domain() const { return "org.jsonrpc.error"; }
  const std::string& message() const { return message_; }
  const std::string& errorDescription() const { return message_; }
  const char* what() const noexcept override { return message_.c_str(); }

  /// For reports to people; they never go on the wire.
  std::optional<std::string> failureReason() const;
  std::optional<std::string> recoverySuggestion() const;
  /// "[-32601] Method not found"
  std::string debugDescription() const;

  const std::optional<Value>& data() const { return data_; }
  /// The JSON-RPC error object: `code`, `message` and, where there is any, `data`.
  Value toValue() const;

  friend bool operator==(const MCPError& a, const MCPError& b) {
    return a.kind_ == b.kind_ && a.code() == b.code() && a.message_ == b.message_ && a.data_ == b.data_;
  }

 private:
  MCPError(Kind kind, Detail detail);

  Kind kind_;
  int carriedCode_ = 0;  // of the server errors
  Detail detail_;
  std::string message_;
  std::optional<Value> data_;
};

}  // namespace vell::mcp
