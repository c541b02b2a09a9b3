#include "ipc/notification.h"

#include <string>

#include "ipc/message.h"
#include "json/error.h"

namespace vell::ipc {

/// The start of a line, short and plain enough to show.
static std::string excerpt(std::string_view line) {
  constexpr std::size_t most = 80;
  std::string shown(line.substr(0, most));
  for (char& c : shown) {
    if (c < ' ' || c > '~') c = '?';
  }
  return line.size() <= most ? shown : shown + "...";
}

static std::unique_ptr<json::Document> parseEvent(json::Text line) {
  const std::string start = excerpt(line.view());
  try {
    return parseMessage(std::move(line));
  } catch (const json::ParseError& error) {
    throw SubscriptionError(std::string("Vell sent an event that is not JSON: ") + error.what() + ": " +
                            start);
  }
}

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
