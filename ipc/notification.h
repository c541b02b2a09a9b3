#pragma once

#include <memory>
#include <optional>
#include <stdexcept>

#include "json/document.h"
#include "json/text.h"

namespace vell::ipc {

/// A line of a subscription that is not JSON; `what()` says what came instead.
class SubscriptionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
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

}  // namespace vell::ipc
