#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "json/document.h"
#include "json/text.h"

// The messages that travel between `vell` and the application, one on each line.
namespace vell::ipc {

/// One request as it is sent, its line feed included. `params` is JSON text; empty sends none.
std::string requestLine(std::int64_t id, std::string_view method, std::string_view params);

/// The application's answer to one request: the response as it came, and the result in it.
/// Printers write straight from the node; nothing is copied on the way.
class Answer {
 public:
  /// Reads one line from the application: an answer, or none where the line is to be skipped (blank, an
  /// array, a notification). Throws ClientError::rpcError for an error response and json::ParseError for
  /// a line that is neither object nor array.
  static std::optional<Answer> parse(json::Text line);

  /// The result, JSON null where the response names none; valid while the answer lives, moved or not.
  json::Node result() const { return result_; }
  /// The result as compact JSON text with sorted keys.
  std::string bytes() const;

 private:
  Answer(std::unique_ptr<json::Document> document, json::Node result)
      : document_(std::move(document)), result_(result) {}

  std::unique_ptr<json::Document> document_;
  json::Node result_;
};

/// One event of a subscription.
class Notification {
 public:
  /// Reads one line from the application: an event, or none where the line is to be skipped (blank, no
  /// object, an answer, a notification without params). Throws ClientError::rpcError for an error and
  /// SubscriptionError for what is not JSON.
  static std::optional<Notification> parse(json::Text line);

  /// Valid while the notification lives, moved or not.
  json::Node params() const { return params_; }
  /// Whether this is the subscription's last event.
  bool closesSubscription() const;

 private:
  Notification(std::unique_ptr<json::Document> document, json::Node params)
      : document_(std::move(document)), params_(params) {}

  std::unique_ptr<json::Document> document_;
  json::Node params_;
};

/// A line of a subscription that is not JSON; `what()` says what came instead.
class SubscriptionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace vell::ipc
