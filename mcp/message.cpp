#include "mcp/message.h"

namespace vell::mcp {

namespace {

constexpr const char* jsonrpc = "2.0";

InvalidMessage invalid(std::optional<RequestId> id, const char* detail) {
  return {std::move(id), MCPError::invalidRequest(detail)};
}

std::optional<Value> takeMember(Value::Object& object, const char* key) {
  const auto member = object.find(key);
  return member == object.end() ? std::nullopt : std::optional(std::move(member->second));
}

int codeOf(const Value& error) {
  const Value* code = error.find("code");
  return code && code->integer() ? static_cast<int>(*code->integer()) : -1;
}

MCPError decodeError(const Value& error) {
  const Value* message = error.find("message");
  const Value* data = error.find("data");
  return MCPError::fromError(codeOf(error),
                             message && message->string() ? *message->string() : "Unknown error",
                             data ? std::optional(*data) : std::nullopt);
}

Message decodeResponse(Value::Object& object, std::optional<RequestId> id) {
  if (!id) return invalid(std::nullopt, "A message needs a method, or an id and a result or error");
  if (const auto error = takeMember(object, "error")) return Response{*id, decodeError(*error)};
  if (auto result = takeMember(object, "result")) return Response{*id, std::move(*result)};
  return invalid(id, "A message needs a method, a result or an error");
}

Value::Object envelope(const std::optional<RequestId>& id) {
  return {{"id", id ? id->toValue() : Value()}, {"jsonrpc", jsonrpc}};
}

}  // namespace

Message decodeMessage(Value value) {
  Value::Object* object = value.object();
  if (!object) return invalid(std::nullopt, "A message is a JSON object");
  const auto idValue = takeMember(*object, "id");
  const auto id = idValue ? RequestId::from(*idValue) : std::nullopt;
  const Value* version = value.find("jsonrpc");
  if (!version || *version != jsonrpc) return invalid(id, "Invalid JSON-RPC version");
  const auto method = takeMember(*object, "method");
  if (!method) return decodeResponse(*object, id);
  if (!method->string()) return invalid(id, "The method is not a string");
  if (idValue && !id) return invalid(std::nullopt, "An id is a string or an integer");
  auto params = takeMember(*object, "params");
  if (!id) return Notification{*method->string(), std::move(params)};
  return Request{*id, *method->string(), std::move(params)};
}

std::string encodeResult(const RequestId& id, const ValueWriter& writeResult) {
  std::string line = "{\"id\":";
  encode(id.toValue(), line);
  line.append(",\"jsonrpc\":\"").append(jsonrpc).append("\",\"result\":");
  writeResult(line);
  return line += '}';
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
