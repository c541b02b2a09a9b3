#include "mcp/mcp_error.h"

namespace vell::mcp {

namespace {

using Kind = MCPError::Kind;

struct Traits {
  Kind kind;
  int code;
  const char* text;  // begins the message
  const char* reason;
  const char* suggestion;
};

// clang-format off
constexpr Traits allTraits[] = {
    {Kind::parseError, -32700, "Parse error: Invalid JSON",
     "The server received invalid JSON that could not be parsed",
     "Verify that the JSON being sent is valid and well-formed"},
    {Kind::invalidRequest, -32600, "Invalid Request",
     "The JSON sent is not a valid Request object",
     "Ensure the request follows the JSON-RPC 2.0 specification format"},
    {Kind::methodNotFound, -32601, "Method not found",
     "The method does not exist or is not available",
     "Check the method name and ensure it is supported by the server"},
    {Kind::invalidParams, -32602, "Invalid params",
     "Invalid method parameter(s)",
     "Verify the parameters match the method's expected parameters"},
    {Kind::internalError, -32603, "Internal error",
     "Internal JSON-RPC error", nullptr},
    {Kind::resourceNotFound, -32002, "Resource not found",
     "The requested resource does not exist",
     "Verify the resource URI is correct and the resource exists"},
    {Kind::urlElicitationRequired, -32042, "",
     "The request requires URL-mode elicitation(s) to be completed first",
     "Complete the required URL elicitation(s) and retry the request"},
    {Kind::serverError, 0, "Server error", "Server-defined error occurred", nullptr},
    {Kind::serverErrorWithData, 0, "Server error", "Server-defined error occurred", nullptr},
    {Kind::transportError, -32003, "Transport error", nullptr, nullptr},
    {Kind::requestTimeout, -32001, "Request timeout",
     "The server did not respond within the timeout period",
     "Try increasing the timeout or check if the server is responding"},
    {Kind::requestCancelled, -32004, "Request cancelled",
     "The request was cancelled before it could complete",
     "Retry the request if needed"},
    {Kind::connectionClosed, -32000, "Connection closed",
     "The connection to the server was closed",
     "Try reconnecting to the server"},
    {Kind::sessionExpired, -32005, "Session expired",
     "The server session is no longer valid",
     "Try reconnecting to the server"},
};
// clang-format on

const Traits& traitsOf(Kind kind) { return allTraits[static_cast<std::size_t>(kind)]; }

std::optional<std::string> optionalText(const char* text) {
  return text ? std::optional<std::string>(text) : std::nullopt;
}

bool carriesCode(Kind kind) { return kind == Kind::serverError || kind == Kind::serverErrorWithData; }

Value::Array elicitationsIn(const std::optional<Value>& data) {
  const Value* elicitations = data ? data->find("elicitations") : nullptr;
  return elicitations && elicitations->array() ? *elicitations->array() : Value::Array{};
}

}  // namespace

MCPError::MCPError(Kind kind, Detail detail)
    : kind_(kind), detail_(std::move(detail)), message_(traitsOf(kind).text) {
  if (detail_) message_.append(message_.empty() ? "" : ": ").append(*detail_);
}

MCPError MCPError::invalidParams(Detail detail, std::optional<Value> data) {
  MCPError error(Kind::invalidParams, std::move(detail));
  error.data_ = std::move(data);
  return error;
}

MCPError MCPError::urlElicitationRequired(Value::Array elicitations, std::string message) {
  MCPError error(Kind::urlElicitationRequired, std::move(message));
  error.data_ = Value::Object{{"elicitations", std::move(elicitations)}};
  return error;
}

MCPError MCPError::serverError(int code, std::string message) {
  MCPError error(Kind::serverError, std::move(message));
  error.carriedCode_ = code;
  return error;
}

MCPError MCPError::serverErrorWithData(int code, std::string message, Value data) {
  MCPError error(Kind::serverErrorWithData, std::move(message));
  error.carriedCode_ = code;
  error.data_ = std::move(data);
  return error;
}

MCPError MCPError::transportError(const std::exception& underlying) {
  return {Kind::transportError, underlying.what()};
}

MCPError MCPError::requestTimeout(double seconds, Detail message) {
  MCPError error(Kind::requestTimeout, std::move(message));
  if (!error.detail_) error.message_ = "Request timed out after " + encode(seconds) + " seconds";
  return error;
}

MCPError MCPError::fromError(int code, std::string message, std::optional<Value> data) {
  for (const Traits& traits : allTraits) {
    if (traits.code != code || carriesCode(traits.kind)) continue;
    switch (traits.kind) {
      case Kind::connectionClosed:
      case Kind::sessionExpired:
        return {traits.kind, {}};
      case Kind::urlElicitationRequired:
        return urlElicitationRequired(elicitationsIn(data), std::move(message));
      default:
        return {traits.kind, std::move(message)};
    }
  }
  return data ? serverErrorWithData(code, std::move(message), std::move(*data))
              : serverError(code, std::move(message));
}

int MCPError::code() const { return carriesCode(kind_) ? carriedCode_ : traitsOf(kind_).code; }

std::optional<std::string> MCPError::failureReason() const { return optionalText(traitsOf(kind_).reason); }

std::optional<std::string> MCPError::recoverySuggestion() const {
  return optionalText(traitsOf(kind_).suggestion);
}

std::string MCPError::debugDescription() const {
  const std::string text = "[" + std::to_string(code()) + "] " + message_;
  return kind_ == Kind::transportError ? text + " (Underlying error: " + detail_.value_or("") + ")" : text;
}

// A carried code keeps its message as it came, so that an error passes through unchanged.
Value MCPError::toValue() const {
  Value::Object error{{"code", code()}, {"message", carriesCode(kind_) ? detail_.value_or("") : message_}};
  if (data_) error.emplace("data", *data_);
  return error;
}

}  // namespace vell::mcp
