#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "mcp/logger.h"
#include "mcp/message.h"

namespace vell::mcp {

class Server;

/// One request in flight, shared by all who work on it. It is answered exactly once or, when cancelled,
/// never. If it is destroyed unanswered, it answers with an internal error.
class RequestContext {
 public:
  /// Sends the response, a line; none for a cancelled request.
  using Deliver = std::function<void(std::optional<std::string> response)>;

  RequestContext(std::weak_ptr<Server> server, RequestId id, const std::optional<Value>& params,
                 Deliver deliver);
  ~RequestContext();
  RequestContext(const RequestContext&) = delete;
  RequestContext& operator=(const RequestContext&) = delete;

  const RequestId& id() const { return id_; }
  const std::optional<RequestId>& progressToken() const { return progressToken_; }
  bool isCancelled() const { return cancelled_; }
  /// Called once, when the client cancels before the answer. A later call replaces the callback.
  void onCancelled(std::function<void()> callback) { onCancelled_ = std::move(callback); }

  /// Sends `notifications/progress` where the client asked for it. `progress` must grow from call to call.
  void reportProgress(double progress, std::optional<double> total = {}, const std::string& message = {});

  /// An entry for the logger of the session and for its client.
  void log(LogLevel level, const std::string& message, const LogMetadata& metadata = {});

  void succeed(Value result);
  void fail(const MCPError& error);
  /// An MCPError is sent as it is; any other failure as an internal error without its text.
  void fail(const std::exception_ptr& failure);

 private:
  friend class Server;
  void cancel();
  /// Throws where the server no longer exists.
  std::shared_ptr<Server> server() const;
  bool mayAnswer(const char* suppressed);
  void answer(std::string response);

  std::weak_ptr<Server> server_;
  RequestId id_;
  std::optional<RequestId> progressToken_;
  Deliver deliver_;  // none once answered or cancelled
  std::function<void()> onCancelled_;
  bool cancelled_ = false;
  bool suppressed_ = false;  // whether the log tells that a cancelled request got no response
};

using RequestContextPtr = std::shared_ptr<RequestContext>;

}  // namespace vell::mcp
