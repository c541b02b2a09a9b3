// The session's own part of the protocol: the handshake, housekeeping requests and notices.
#include <algorithm>

#include "mcp/message.h"
#include "mcp/params.h"
#include "mcp/server.h"

namespace vell::mcp {

void Server::bindDefaultHandlers() {
  withRequestHandler("initialize",
                     [this](const auto& params, const auto& context) { initialize(params, context); });
  withRequestHandler("ping", [](const auto&, const auto& context) { context->succeed(Value::Object{}); });
  onNotification("notifications/initialized", [this](const auto&) {
    if (isInitialized()) becomeReady();
  });
  withRequestHandler("logging/setLevel",
                     [this](const auto& params, const auto& context) { setLevel(params, context); });
  onNotification("notifications/cancelled", [this](const auto& params) { cancel(params); });
}

void Server::initialize(const std::optional<Value>& params, const RequestContextPtr& context) {
  if (isInitialized()) throw MCPError::invalidRequest("Server is already initialized");
  const Params reader(params, Params::Presence::required);
  const std::string version =
      negotiate(reader.optionalText("protocolVersion").value_or(Version::defaultNegotiated));
  clientInfo_ = reader.optionalObject("clientInfo");
  clientCapabilities_ = reader.optionalObject("capabilities");
  if (hook_) hook_(clientInfo_, clientCapabilities_);
  protocolVersion_ = version;
  Value::Object result{{"protocolVersion", version},
                       {"capabilities", capabilities_.toValue()},
                       {"serverInfo", info_.toValue()}};
  if (info_.instructions) result.emplace("instructions", *info_.instructions);
  context->succeed(std::move(result));
}

// An unknown version never fails the handshake: the client gets the newest and decides for itself.
std::string Server::negotiate(const std::string& version) const {
  const auto& supported = configuration_.supportedProtocolVersions;
  const bool known = std::find(supported.begin(), supported.end(), version) != supported.end();
  return known ? version : supported.front();
}

void Server::setLevel(const std::optional<Value>& params, const RequestContextPtr& context) {
  const std::string name = Params(params, Params::Presence::required).text("level");
  const auto level = levelNamed(name);
  if (!level) throw MCPError::invalidParams("Unknown level: " + name);
  clientLevel_ = level;
  context->succeed(Value::Object{});
}

void Server::notify(const std::string& method, const std::optional<Value>& params) {
  if (!transport_) return;
  std::string line = encodeNotification(method, params);
  if (ready_) return send(std::move(line));
  const bool known = std::find(heldBack_.begin(), heldBack_.end(), line) != heldBack_.end();
  if (!known) heldBack_.push_back(std::move(line));
}

void Server::becomeReady() {
  if (std::exchange(ready_, true)) return;
  for (std::string& line : std::exchange(heldBack_, {})) send(std::move(line));
}

void Server::sendResourceUpdated(const std::string& uri) {
  notify("notifications/resources/updated", Value::Object{{"uri", uri}});
}

bool Server::logsTo(LogLevel level) const {
  return logger_.accepts(level) || (clientLevel_ && level >= *clientLevel_);
}

void Server::sendLogMessage(LogLevel level, const std::string& label, Value data) {
  if (!clientLevel_ || level < *clientLevel_) return;
  notify("notifications/message",
         Value::Object{{"level", levelName(level)}, {"logger", label}, {"data", std::move(data)}});
}

void Server::log(LogLevel level, const std::string& message, const LogMetadata& metadata) {
  logger_.log(level, message, metadata);
  Value::Object data{{"message", message}};
  for (const auto& [key, value] : metadata) data.emplace(key, value);
  sendLogMessage(level, logger_.label(), std::move(data));
}

}  // namespace vell::mcp
