#pragma once

#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "ipc/vell_client.h"

namespace vell::ipc {

/// A call over the shared connection that failed; its text is the underlying error's.
class VellIPCError : public std::runtime_error {
 public:
  explicit VellIPCError(const ClientError& error) : std::runtime_error(error.what()), underlying(error) {}

  const ClientError underlying;
};

/// The connection that all of a process share: one call at a time, from any thread. A process makes one.
class VellIPC : public Application {
 public:
  using Application::request;
  /// Throws VellIPCError; other errors (json::ParseError) pass through.
  Answer request(std::string_view method, const std::string& params) override;
  /// The same for params from elsewhere, checked and rewritten first. Returns compact JSON text.
  std::string call(std::string_view method, const std::optional<std::string>& paramsJSON = std::nullopt);

 private:
  std::mutex turn_;
  ReconnectingClient client_;
};

}  // namespace vell::ipc
