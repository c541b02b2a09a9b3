#pragma once

#include <optional>
#include <string>
#include <variant>

#include "mcp/mcp_error.h"
#include "mcp/request_id.h"
#include "mcp/value.h"
#include "mcp/value_text.h"

/// The messages of JSON-RPC 2.0.
namespace vell::mcp {

struct Request {
  RequestId id;
  std::string method;
  std::optional<Value> params;
};

struct Notification {
  std::string method;
  std::optional<Value> params;
};

struct Response {
  RequestId id;
  std::variant<Value, MCPError> outcome;  // result or error
};

/// What is no message, and the error that says why; with the identifier where it has a good one.
struct InvalidMessage {
  std::optional<RequestId> id;
  MCPError error;
};

using Message = std::variant<Request, Notification, Response, InvalidMessage>;

Message decodeMessage(Value value);

/// Each on one line, without line feed.
std::string encodeResult(const RequestId& id, const ValueWriter& writeResult);
/// Without an identifier `id` is null: the request could not be told.
std::string encodeError(const std::optional<RequestId>& id, const MCPError& error);
std::string encodeNotification(const std::string& method, const std::optional<Value>& params);

}  // namespace vell::mcp
