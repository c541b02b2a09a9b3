#include "mcp/message.h"

#include <algorithm>

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

/// The length of the JSON string that a text begins with, its quotes included; of the whole text where it
/// does not end.
std::size_t stringLength(std::string_view text) {
  std::size_t at = 1;
  while (at < text.size() && text[at] != '"') at += text[at] == '\\' ? 2 : 1;
  return std::min(at + 1, text.size());
}

std::string_view withoutBlanks(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(" \t\r"), text.size()));
}

/// The identifier that the text behind a key holds; none where there is no colon or no valid identifier.
std::optional<RequestId> idBehindKey(std::string_view text) {
  text = withoutBlanks(text);
  if (!text.starts_with(':')) return std::nullopt;
  text = withoutBlanks(text.substr(1));
  const std::size_t length = text.starts_with('"') ? stringLength(text) : text.find_first_of(",} \t\r");
  try {
    return RequestId::from(decode(text.substr(0, length)));
  } catch (const json::ParseError&) {
    return std::nullopt;
  }
}

Value::Object envelope(const std::optional<RequestId>& id) {
  return {{"id", id ? id->toValue() : Value()}, {"jsonrpc", jsonrpc}};
}

}  // namespace

Message decodeMessage(const json::Node& node) {
  if (node.kind() != json::Kind::object) return invalid(std::nullopt, "A message is a JSON object");
  const auto id = idIn(node);
  const auto method = node.find("method");
  if (!method && (node.find("result") || node.find("error"))) return Response{id};
  const auto version = node.find("jsonrpc");
  if (!version || version->string() != jsonrpc) return invalid(id, "Invalid JSON-RPC version");
  if (!method) return invalid(id, "A message needs a method, a result or an error");
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

std::optional<RequestId> findId(std::string_view text) {
  text = withoutBlanks(text);
  std::optional<RequestId> id;
  int depth = 0;
  while (!text.empty() && (depth > 0 || text.front() == '{')) {
    const char first = text.front();
    const std::string_view token = text.substr(0, first == '"' ? stringLength(text) : 1);
    text.remove_prefix(token.size());
    if (first == '{' || first == '[') ++depth;
    if (first == '}' || first == ']') --depth;
    if (depth == 0) break;
    if (depth > 1 || token != "\"id\"") continue;
    if (auto found = idBehindKey(text)) id = std::move(found);
  }
  return id;
}

std::string encodeResult(const RequestId& id, Value result) {
  Value::Object message = envelope(id);
  message.emplace("result", std::move(result));
  return encode(std::move(message));
}

std::string encodeError(const std::optional<RequestId>& id, const MCPError& error) {
  Value::Object message = envelope(id);
  message.emplace("error", error.toValue());
  return encode(std::move(message));
}

std::string encodeNotification(const std::string& method, const std::optional<Value>& params) {
  Value::Object message{{"jsonrpc", jsonrpc}, {"method", method}};
  if (params) message.emplace("params", *params);
  return encode(std::move(message));
}

}  // namespace vell::mcp
