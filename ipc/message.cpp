#include "ipc/message.h"

#include "ipc/client_error.h"
#include "json/error.h"
#include "json/rewrite.h"
#include "json/writer.h"

namespace vell::ipc {

namespace {

/// The message on a line; null where the line is blank. Throws json::ParseError.
std::unique_ptr<json::Document> parseMessage(json::Text line) {
  if (line.view().find_first_not_of(" \t\r") == std::string_view::npos) return nullptr;
  return std::make_unique<json::Document>(std::move(line));
}

/// Throws ClientError::rpcError where the message, an object, has an error object.
void throwIfError(const json::Document& message) {
  const auto error = message.root().find("error");
  if (!error || error->kind() != json::Kind::object) return;
  const auto code = error->find("code");
  const auto text = error->find("message");
  throw ClientError::rpcError(code ? code->integer().value_or(-1) : -1,
                              text ? text->string().value_or("Unknown error") : "Unknown error");
}

/// The start of a line, short and plain enough to show.
std::string excerpt(std::string_view line) {
  constexpr std::size_t most = 80;
  std::string shown(line.substr(0, most));
  for (char& c : shown) {
    if (c < ' ' || c > '~') c = '?';
  }
  return line.size() <= most ? shown : shown + "...";
}

std::unique_ptr<json::Document> parseEvent(json::Text line) {
  const std::string start = excerpt(line.view());
  try {
    return parseMessage(std::move(line));
  } catch (const json::ParseError& error) {
    throw SubscriptionError(std::string("Vell sent an event that is not JSON: ") + error.what() + ": " +
                            start);
  }
}

}  // namespace

std::string requestLine(std::int64_t id, std::string_view method, std::string_view params) {
  std::string line;
  json::Writer writer(line);
  writer.beginObject().member("id", id).member("jsonrpc", "2.0").member("method", method);
  if (!params.empty()) writer.key("params").raw(params);
  writer.endObject();
  return line += '\n';
}

std::optional<Answer> Answer::parse(json::Text line) {
  auto message = parseMessage(std::move(line));
  if (!message || message->root().kind() == json::Kind::array) return std::nullopt;
  if (message->root().kind() != json::Kind::object) {
    throw json::ParseError("Vell sent a line that is not a JSON object", 0);
  }
  throwIfError(*message);
  if (!message->root().find("id")) return std::nullopt;
  if (const auto result = message->root().find("result")) return Answer(std::move(message), *result);
  auto null = std::make_unique<json::Document>("null");
  const json::Node root = null->root();
  return Answer(std::move(null), root);
}

std::string Answer::bytes() const { return json::toString(result_, json::Layout::compact); }

std::optional<Notification> Notification::parse(json::Text line) {
  auto message = parseEvent(std::move(line));
  if (!message || message->root().kind() != json::Kind::object) return std::nullopt;
  throwIfError(*message);
  const auto params = message->root().find("params");
  if (!params || !message->root().find("method")) return std::nullopt;
  return Notification(std::move(message), *params);
}

bool Notification::closesSubscription() const {
  if (params_.kind() != json::Kind::object) return false;
  const auto kind = params_.find("kind");
  return kind && kind->string() == "subscription.closed";
}

}  // namespace vell::ipc
