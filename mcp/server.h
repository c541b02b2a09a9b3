#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "mcp/logger.h"
#include "mcp/message.h"
#include "mcp/request_context.h"
#include "mcp/server_info.h"
#include "mcp/transport.h"
#include "mcp/value.h"

namespace vell::mcp {

/// One protocol session over one transport: it negotiates, answers the housekeeping requests itself and
/// hands every other message to the handler registered for its method. All on the thread of its transport.
class Server : public std::enable_shared_from_this<Server> {
 public:
  /// Answers through the context, now or later; an exception becomes the error response.
  using RequestHandler =
      std::function<void(const std::optional<Value>& params, const RequestContextPtr& context)>;
  using NotificationHandler = std::function<void(const std::optional<Value>& params)>;
  /// Runs before the session counts as initialized; an exception fails the `initialize`.
  using InitializeHook = std::function<void(const Value& clientInfo, const Value& clientCapabilities)>;

  /// Throws std::logic_error where the configuration supports no version.
  static std::shared_ptr<Server> make(ServerInfo info, ServerCapabilities capabilities,
                                      ServerConfiguration configuration = ServerConfiguration::standard(),
                                      Logger logger = Logger("mcp.server"));

  void withRequestHandler(const std::string& method, RequestHandler handler);
  void withFallbackHandler(std::function<void(const Request&, const RequestContextPtr&)> handler);
  void onNotification(const std::string& method, NotificationHandler handler);

  /// Throws what Transport::connect throws.
  void start(Transport& transport, InitializeHook hook = nullptr);
  /// Ends the session: the transport is disconnected, requests in flight are cancelled.
  void stop();
  /// Called once, when input has ended (or failed: with the error). Requests may still be in flight.
  void onInputEnded(std::function<void(std::error_code)> callback) { onInputEnded_ = std::move(callback); }
  /// Calls back when no request is in flight and all answers are written, or the session has ended.
  void whenIdle(std::function<void()> callback);
  /// Requests in flight plus bytes not written yet: it shrinks as long as the session makes progress.
  std::size_t unfinished() const;

  bool isInitialized() const { return protocolVersion_.has_value(); }
  const std::optional<std::string>& protocolVersion() const { return protocolVersion_; }
  const Value& clientInfo() const { return clientInfo_; }
  const Value& clientCapabilities() const { return clientCapabilities_; }

  /// Sends a notification. Before the client is ready for it, it is kept; equal ones are kept once.
  void notify(const std::string& method, const std::optional<Value>& params = {});
  void sendToolListChanged() { notify("notifications/tools/list_changed"); }
  void sendResourceListChanged() { notify("notifications/resources/list_changed"); }
  void sendPromptListChanged() { notify("notifications/prompts/list_changed"); }
  void sendResourceUpdated(const std::string& uri);
  /// Sends `notifications/message` where the client asked for that level.
  void sendLogMessage(LogLevel level, const std::string& label, Value data);
  /// An entry for the logger and, where the client asked for its level, for the client.
  void log(LogLevel level, const std::string& message, const LogMetadata& metadata = {});

 private:
  friend class RequestContext;

  Server(ServerInfo info, ServerCapabilities capabilities, ServerConfiguration configuration, Logger logger);
  void bindDefaultHandlers();
  void initialize(const std::optional<Value>& params, const RequestContextPtr& context);
  void ping(const std::optional<Value>& params, const RequestContextPtr& context);
  void initialized(const std::optional<Value>& params);
  void setLevel(const std::optional<Value>& params, const RequestContextPtr& context);
  void cancelled(const std::optional<Value>& params);
  std::string negotiate(const std::string& version) const;

  void receive(std::string_view line);
  void receiveBatch(const std::vector<json::Node>& elements);
  void dispatch(Message message, const RequestContext::Deliver& deliver);
  void handle(Request& request, const RequestContext::Deliver& deliver);
  void perform(Request& request, const RequestContextPtr& context);
  void handle(const Notification& notification);
  void becomeReady();
  bool clientWants(LogLevel level) const;

  void finished(const RequestContext& context);
  void send(std::string line);
  void settle();
  void inputEnded(std::error_code error);

  ServerInfo info_;
  ServerCapabilities capabilities_;
  ServerConfiguration configuration_;
  Logger logger_;
  std::map<std::string, RequestHandler> requestHandlers_;
  std::function<void(const Request&, const RequestContextPtr&)> fallback_;
  std::map<std::string, std::vector<NotificationHandler>> notificationHandlers_;
  InitializeHook hook_;
  std::function<void(std::error_code)> onInputEnded_;
  std::function<void()> onIdle_;

  Transport* transport_ = nullptr;  // none before the start and after the end
  std::optional<std::string> protocolVersion_;
  Value clientInfo_;
  Value clientCapabilities_;
  std::optional<LogLevel> clientLevel_;  // none until the client sets one: it gets no log messages
  bool ready_ = false;
  std::vector<std::string> heldBack_;
  /// A client may use an identifier again before its answer: then it has several entries.
  std::unordered_multimap<RequestId, RequestContext*> inFlight_;
};

}  // namespace vell::mcp
