#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "ipc/application.h"
#include "ipc/client_error.h"
#include "json/line_framing.h"
#include "platform/descriptor.h"

namespace vell::ipc {

/// Connects a descriptor, blocking or not, to the application's socket. Throws ClientError; without blocking
/// its code is EAGAIN while the application has more callers waiting than it accepts.
platform::Descriptor connectToApplication(const std::string& socketPath, bool blocking = true);

/// One open connection to the application, for one user at a time; closed when it is destroyed.
/// Everything here throws ClientError, and json::ParseError where the application sends what is not JSON.
class VellClient : public Application {
 public:
  /// Connects to the socket at `resolveSocketPath()`.
  VellClient() : VellClient(resolveSocketPath()) {}
  explicit VellClient(const std::string& socketPath);

  static std::string resolveSocketPath();

  /// Has a handler called once for each request whose answer, or first event, takes more than a second.
  void whenSlow(std::function<void()> tell) { tellSlow_ = std::move(tell); }

  using Application::request;
  Answer request(std::string_view method, const std::string& params) override;
  /// The answer's result as compact JSON text with sorted keys.
  std::string call(std::string_view method, const std::string& params = {});

  /// Receives an event's params, which live for the call; may throw, which ends the subscription.
  using EventHandler = std::function<void(const json::Node& params)>;
  /// Sends one request and calls the handler with every event, the one that closes the subscription last.
  /// Blocks meanwhile. Throws what the handler throws, and SubscriptionError for an event that is not JSON.
  void subscribe(std::string_view method, const std::string& params, const EventHandler& onEvent);
  template <class Record>
  void subscribe(const Record& record, const EventHandler& onEvent) {
    subscribe(Record::method, record.toJson(), onEvent);
  }

  /// The next line. What arrived behind it stays in `arrived`, which lives for one call or subscription.
  json::Text readLine(json::LineFraming& arrived);
  void writeAll(std::string_view bytes);

 private:
  void send(std::string_view method, const std::string& params);
  void tellIfSlow();

  platform::Descriptor socket_;
  std::int64_t nextId_ = 1;
  std::function<void()> tellSlow_;
  std::optional<std::chrono::steady_clock::time_point> slowAt_;  // of the request at hand, until it is told
};

/// A connection made when first needed and made anew after a transport failure, for commands that wait while
/// the application starts. Nothing is retried: the call that meets the failure throws it.
class ReconnectingClient : public Application {
 public:
  /// The handler is that of VellClient::whenSlow.
  explicit ReconnectingClient(std::function<void()> tellSlow = {}) : tellSlow_(std::move(tellSlow)) {}

  using Application::request;
  Answer request(std::string_view method, const std::string& params) override;

 private:
  std::function<void()> tellSlow_;
  std::optional<VellClient> client_;
};

}  // namespace vell::ipc
