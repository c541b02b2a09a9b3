#include "mcp/request_context.h"

#include "mcp/server.h"

namespace vell::mcp {

static std::optional<RequestId> progressTokenIn(const std::optional<Value>& params) {
  const Value* meta = params ? params->find("_meta") : nullptr;
  const Value* token = meta ? meta->find("progressToken") : nullptr;
  return token ? RequestId::from(*token) : std::nullopt;
}

RequestContext::RequestContext(std::weak_ptr<Server> server, RequestId id, const std::optional<Value>& params,
                               Deliver deliver)
    : server_(std::move(server)),
      id_(std::move(id)),
      progressToken_(progressTokenIn(params)),
      deliver_(std::move(deliver)) {}

RequestContext::~RequestContext() {
  if (server_.expired()) return;
  if (deliver_) fail(MCPError::internalError("The request was left unanswered"));
  if (cancelled_ && !suppressed_) mayAnswer("Request cancelled, suppressing response");
}

std::shared_ptr<Server> RequestContext::server() const {
  if (auto server = server_.lock()) return server;
  throw MCPError::internalError("Server was deallocated");
}

void RequestContext::reportProgress(double progress, std::optional<double> total,
                                    const std::string& message) {
  if (!progressToken_ || !deliver_) return;
  Value::Object params{{"progressToken", progressToken_->toValue()}, {"progress", progress}};
  if (total) params.emplace("total", *total);
  if (!message.empty()) params.emplace("message", message);
  server()->notify("notifications/progress", std::move(params));
}

void RequestContext::log(LogLevel level, const std::string& message, const LogMetadata& metadata) {
  server()->log(level, message, metadata);
}

void RequestContext::succeed(Value result) {
  if (mayAnswer("Request cancelled, suppressing response")) answer(encodeResult(id_, std::move(result)));
}

void RequestContext::fail(const MCPError& error) {
  if (mayAnswer("Request cancelled during error handling, suppressing response"))
    answer(encodeError(id_, error));
}

void RequestContext::fail(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const MCPError& error) {
    fail(error);
  } catch (const std::exception& error) {
    log(LogLevel::error, "Request handler error", {{"error", error.what()}});
    fail(MCPError::internalError("An internal error occurred"));
  }
}

bool RequestContext::mayAnswer(const char* suppressed) {
  if (cancelled_ && !std::exchange(suppressed_, true)) {
    log(LogLevel::debug, suppressed, {{"id", id_.description()}});
  }
  return deliver_ != nullptr;
}

void RequestContext::answer(std::string response) {
  const auto alive = server();
  const Deliver deliver = std::exchange(deliver_, nullptr);
  onCancelled_ = nullptr;
  alive->finished(*this);
  deliver(std::move(response));
}

void RequestContext::cancel() {
  const auto onCancelled = std::exchange(onCancelled_, nullptr);
  const Deliver deliver = std::exchange(deliver_, nullptr);
  cancelled_ = true;
  if (deliver) deliver(std::nullopt);
  if (onCancelled) onCancelled();
}

}  // namespace vell::mcp
