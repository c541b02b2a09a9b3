#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>

#include "mcp/mcp_error.h"
#include "mcp/value.h"

/// The messages of JSON-RPC 2.0.
namespace vell::mcp {

/// A request's identifier, text or integer; also a progress token. Echoed by value and type.
class RequestId {
 public:
  RequestId(std::string text) : content_(std::move(text)) {}
  RequestId(const char* text) : content_(std::string(text)) {}
  RequestId(int number) : content_(std::int64_t{number}) {}
  RequestId(std::int64_t number) : content_(number) {}

  /// None for a value that is neither text nor integer (a fractional number is no identifier).
  static std::optional<RequestId> from(const Value& value) {
    if (const auto* text = value.string()) return RequestId(*text);
    if (const auto* number = value.integer()) return RequestId(*number);
    return std::nullopt;
  }

  Value toValue() const {
    return std::visit([](const auto& content) { return Value(content); }, content_);
  }

  /// The text or the number itself.
  std::string description() const {
    const auto* number = std::get_if<std::int64_t>(&content_);
    return number ? std::to_string(*number) : std::get<std::string>(content_);
  }

  std::size_t hash() const { return std::hash<std::variant<std::string, std::int64_t>>{}(content_); }
  friend bool operator==(const RequestId& a, const RequestId& b) { return a.content_ == b.content_; }

 private:
  std::variant<std::string, std::int64_t> content_;
};

struct Request {
  RequestId id;
  std::string method;
  std::optional<Value> params;
};

struct Notification {
  std::string method;
  std::optional<Value> params;
};

/// The client's answer to a request. The server sends no requests, so nobody reads its result.
struct Response {
  std::optional<RequestId> id;
};

/// JSON that is not a valid message, and the error to answer; with the identifier where it has a valid one.
struct InvalidMessage {
  std::optional<RequestId> id;
  MCPError error;
};

using Message = std::variant<Request, Notification, Response, InvalidMessage>;

Message decodeMessage(const json::Node& node);
/// The identifier of a message that is not JSON, as far as its outermost object shows one.
std::optional<RequestId> findId(std::string_view text);

/// Each on one line, without line feed.
std::string encodeResult(const RequestId& id, Value result);
/// Without an identifier `id` is null.
std::string encodeError(const std::optional<RequestId>& id, const MCPError& error);
std::string encodeNotification(const std::string& method, const std::optional<Value>& params);

}  // namespace vell::mcp

template <>
struct std::hash<vell::mcp::RequestId> {
  std::size_t operator()(const vell::mcp::RequestId& id) const { return id.hash(); }
};
