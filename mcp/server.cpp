#include "mcp/server.h"

#include <algorithm>
#include <stdexcept>

#include "mcp/params.h"

namespace vell::mcp {

namespace {

/// Gathers the responses to the messages of one batch and sends them as one array when the last one is in;
/// nothing where no message gets a response.
class Batch {
 public:
  Batch(std::size_t messages, std::function<void(std::string line)> send)
      : awaited_(messages), send_(std::move(send)) {}

  /// Called once for each message.
  void add(const std::optional<std::string>& response) {
    if (response) responses_.append(responses_.empty() ? "" : ",").append(*response);
    if (--awaited_ == 0 && !responses_.empty()) send_("[" + responses_ + "]");
  }

 private:
  std::size_t awaited_;
  std::function<void(std::string)> send_;
  std::string responses_;
};

}  // namespace

std::shared_ptr<Server> Server::make(ServerInfo info, ServerCapabilities capabilities,
                                     ServerConfiguration configuration, Logger logger) {
  if (configuration.supportedProtocolVersions.empty())
    throw std::logic_error("A server supports some version");
  return std::shared_ptr<Server>(
      new Server(std::move(info), std::move(capabilities), std::move(configuration), std::move(logger)));
}

Server::Server(ServerInfo info, ServerCapabilities capabilities, ServerConfiguration configuration,
               Logger logger)
    : info_(std::move(info)),
      capabilities_(std::move(capabilities)),
      configuration_(std::move(configuration)),
      logger_(std::move(logger)) {
  bindDefaultHandlers();
}

void Server::bindDefaultHandlers() {
  // clang-format off
  withRequestHandler("initialize",            std::bind_front(&Server::initialize, this));
  withRequestHandler("ping",                  std::bind_front(&Server::ping, this));
  onNotification("notifications/initialized", std::bind_front(&Server::initialized, this));
  withRequestHandler("logging/setLevel",      std::bind_front(&Server::setLevel, this));
  onNotification("notifications/cancelled",   std::bind_front(&Server::cancelled, this));
  // clang-format on
}

void Server::withRequestHandler(const std::string& method, RequestHandler handler) {
  requestHandlers_[method] = std::move(handler);
}

void Server::withFallbackHandler(std::function<void(const Request&, const RequestContextPtr&)> handler) {
  fallback_ = std::move(handler);
}

void Server::onNotification(const std::string& method, NotificationHandler handler) {
  notificationHandlers_[method].push_back(std::move(handler));
}

void Server::start(Transport& transport, InitializeHook hook) {
  hook_ = std::move(hook);
  transport_ = &transport;
  transport.connect({[self = shared_from_this()](std::string_view line) { self->receive(line); },
                     [self = shared_from_this()](std::error_code error) { self->inputEnded(error); }});
}

void Server::stop() {
  const auto keep = shared_from_this();
  Transport* transport = std::exchange(transport_, nullptr);
  if (transport) transport->disconnect();
  while (!inFlight_.empty()) {
    RequestContext* context = inFlight_.begin()->second;
    inFlight_.erase(inFlight_.begin());
    context->cancel();
  }
  if (const auto onIdle = std::exchange(onIdle_, nullptr)) onIdle();
}

void Server::whenIdle(std::function<void()> callback) {
  onIdle_ = std::move(callback);
  settle();
}

std::size_t Server::unfinished() const {
  return inFlight_.size() + (transport_ ? transport_->unwritten() : 0);
}

void Server::settle() {
  if (!onIdle_ || !inFlight_.empty()) return;
  if (!transport_) return std::exchange(onIdle_, nullptr)();
  transport_->whenWritten([self = shared_from_this()] {
    if (self->onIdle_ && self->inFlight_.empty()) std::exchange(self->onIdle_, nullptr)();
  });
}

void Server::inputEnded(std::error_code error) {
  if (const auto callback = std::exchange(onInputEnded_, nullptr)) callback(error);
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

void Server::ping(const std::optional<Value>&, const RequestContextPtr& context) {
  context->succeed(Value::Object{});
}

void Server::initialized(const std::optional<Value>&) {
  if (isInitialized()) becomeReady();
}

void Server::setLevel(const std::optional<Value>& params, const RequestContextPtr& context) {
  const auto level = levelNamed(Params(params, Params::Presence::required).text("level"));
  const auto names = levelNames();
  if (!level)
    throw MCPError::invalidParams("Invalid params field",
                                  Value::Object{{"levels", Value::Array(names.begin(), names.end())}});
  clientLevel_ = level;
  context->succeed(Value::Object{});
}

void Server::receive(std::string_view line) {
  const auto answer = [self = shared_from_this()](std::optional<std::string> response) {
    if (response) self->send(std::move(*response));
  };
  try {
    const json::Document document(line);
    if (document.root().kind() == json::Kind::array) return receiveBatch(document.root().elements());
    dispatch(decodeMessage(document.root()), answer);
  } catch (const json::ParseError& error) {
    const std::string place = "at byte " + std::to_string(error.offset()) + ": ";
    send(encodeError(findId(line), MCPError::parseError(place + error.fault())));
  }
}

void Server::receiveBatch(const std::vector<json::Node>& elements) {
  if (elements.empty())
    return send(encodeError(std::nullopt, MCPError::invalidRequest("A batch is not empty")));
  const auto send = [self = shared_from_this()](std::string line) { self->send(std::move(line)); };
  const auto batch = std::make_shared<Batch>(elements.size(), send);
  for (const json::Node& element : elements) {
    Message message = decodeMessage(element);
    auto* invalid = std::get_if<InvalidMessage>(&message);
    if (invalid && invalid->error.kind() == MCPError::Kind::invalidRequest) {
      invalid->error = MCPError::invalidRequest("Invalid batch item format");
    }
    dispatch(std::move(message), [batch](const auto& response) { batch->add(response); });
  }
}

void Server::dispatch(Message message, const RequestContext::Deliver& deliver) {
  if (auto* request = std::get_if<Request>(&message)) return handle(*request, deliver);
  if (auto* notification = std::get_if<Notification>(&message)) {
    handle(*notification);
  } else if (auto* response = std::get_if<Response>(&message)) {
    log(LogLevel::debug, "Response to no request of ours",
        {{"id", response->id ? response->id->description() : "none"}});
  } else {
    const auto& invalid = std::get<InvalidMessage>(message);
    return deliver(encodeError(invalid.id, invalid.error));
  }
  deliver(std::nullopt);
}

void Server::handle(Request& request, const RequestContext::Deliver& deliver) {
  const auto context =
      std::make_shared<RequestContext>(weak_from_this(), request.id, request.params, deliver);
  inFlight_.emplace(request.id, context.get());
  try {
    perform(request, context);
  } catch (...) {
    context->fail(std::current_exception());
  }
}

void Server::perform(Request& request, const RequestContextPtr& context) {
  log(LogLevel::debug, "Processing request", {{"method", request.method}});
  const bool housekeeping = request.method == "initialize" || request.method == "ping";
  if (configuration_.strict && !isInitialized() && !housekeeping) {
    throw MCPError::invalidRequest("Server is not initialized");
  }
  if (isInitialized() && request.method != "initialize") becomeReady();
  const auto handler = requestHandlers_.find(request.method);
  if (handler != requestHandlers_.end()) return handler->second(request.params, context);
  if (!fallback_) throw MCPError::methodNotFound("Unknown method: " + request.method);
  log(LogLevel::debug, "Using fallback handler for request", {{"method", request.method}});
  fallback_(request, context);
}

void Server::handle(const Notification& notification) {
  const auto handlers = notificationHandlers_.find(notification.method);
  if (handlers == notificationHandlers_.end()) return;
  for (const auto& handler : handlers->second) handler(notification.params);
}

void Server::cancelled(const std::optional<Value>& params) {
  const Value* requestId = params ? params->find("requestId") : nullptr;
  const auto id = requestId ? RequestId::from(*requestId) : std::nullopt;
  if (!id) return;
  for (auto entry = inFlight_.find(*id); entry != inFlight_.end(); entry = inFlight_.find(*id)) {
    RequestContext* context = entry->second;
    inFlight_.erase(entry);
    context->cancel();
  }
  settle();
}

void Server::finished(const RequestContext& context) {
  const auto [first, last] = inFlight_.equal_range(context.id());
  const auto entry = std::find_if(first, last, [&](const auto& pair) { return pair.second == &context; });
  if (entry != last) inFlight_.erase(entry);
}

void Server::send(std::string line) {
  try {
    if (transport_) transport_->send(std::move(line));
  } catch (const std::system_error& error) {
    logger_.log(LogLevel::debug, "Message not sent", {{"error", error.what()}});
  }
  settle();
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

bool Server::clientWants(LogLevel level) const { return clientLevel_ && level >= *clientLevel_; }

void Server::sendLogMessage(LogLevel level, const std::string& label, Value data) {
  if (!clientWants(level)) return;
  notify("notifications/message",
         Value::Object{{"level", levelName(level)}, {"logger", label}, {"data", std::move(data)}});
}

void Server::log(LogLevel level, const std::string& message, const LogMetadata& metadata) {
  logger_.log(level, message, metadata);
  if (!clientWants(level)) return;
  Value::Object data{{"message", message}};
  for (const auto& [key, value] : metadata) data.emplace(key, value);
  sendLogMessage(level, logger_.label(), std::move(data));
}

}  // namespace vell::mcp
