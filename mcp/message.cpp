#include "mcp/message.h"

namespace vell::mcp {

namespace {

constexpr const char* jsonrpc = "2.0";

InvalidMessage invalid(std::optional<RequestId> id, const char* detail) {
  return {std::move(id), MCPError::invalidRequest(detail)};
}

std::optional<RequestId> idIn(const json::Node& message) {
  const auto id = message.find("id");
  if (!id) return std::nullopt;
  if (const auto text = id->string()) return RequestId(*text);
  if (const auto number = id->integer()) return RequestId(*number);
  return std::nullopt;
}

Message decodeResponse(const json::Node& message, const std::optional<RequestId>& id) {
  if (!id) return invalid(std::nullopt, "A message needs a method, or an id and a result or error");
  if (message.find("error") || message.find("result")) return Response{*id};
  return invalid(id, "A message needs a method, a result or an error");
}

Value::Object envelope(const std::optional<RequestId>& id) {
  return {{"id", id ? id->toValue() : Value()}, {"jsonrpc", jsonrpc}};
}

}  // namespace

Message decodeMessage(const json::Node& node) {
  if (node.kind() != json::Kind::object) return invalid(std::nullopt, "A message is a JSON object");
  const auto id = idIn(node);
  const auto version = node.find("jsonrpc");
  if (!version || version->string() != jsonrpc) return invalid(id, "Invalid JSON-RPC version");
  const auto method = node.find("method");
  if (!method) return decodeResponse(node, id);
  const auto name = method->string();
  if (!name) return invalid(id, "The method is not a string");
  if (node.find("id") && !id) return invalid(std::nullopt, "An id is a string or an integer");
  const auto params = node.find("params");
  try {
    auto value = params ? std::optional(decode(*params)) : std::nullopt;
    if (id) return Request{*id, *name, std::move(value)};
    return Notification{*name, std::move(value)};
  } catch (const json::ParseError& error) {  // params that no Value can hold
    if (id) return InvalidMessage{id, MCPError::invalidParams("Invalid params field: " + error.fault())};
    return Notification{*name, {}};
  }
}

std::string encodeResult(const RequestId& id, Value result) {
  Value::Object message = envelope(id);
  message.emplace("result", std::move(result));
  return encode(message);
}

std::string encodeError(const std::optional<RequestId>& id, const MCPError& error) {
  Value::Object message = envelope(id);
  message.emplace("error", error.toValue());
  return encode(message);
}

std::string encodeNotification(const std::string& method, const std::optional<Value>& params) {
  Value::Object message{{"jsonrpc", jsonrpc}, {"method", method}};
  if (params) message.emplace("params", *params);
  return encode(message);
}

}  // namespace vell::mcp
