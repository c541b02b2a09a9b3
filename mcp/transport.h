#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "mcp/logger.h"

namespace vell::mcp {

/// Carries whole messages, each a run of bytes without line feed, whatever their content.
/// Everything happens on one thread.
class Transport {
 public:
  struct Receiver {
    std::function<void(std::string_view message)> onMessage;
    /// Called once, last: end of input or `disconnect()` (no error), a read error, or a peer that is gone.
    std::function<void(std::error_code error)> onEnd;
  };

  virtual ~Transport() = default;

  virtual const Logger& logger() const = 0;
  /// Starts receiving; does nothing when connected. Throws std::system_error and stays disconnected.
  virtual void connect(Receiver receiver) = 0;
  /// Writes what was sent before, as far as that is possible without waiting.
  virtual void disconnect() = 0;
  /// Messages arrive whole and in the order in which they were sent. Throws std::system_error (ENOTCONN).
  virtual void send(std::string message) = 0;
  /// Calls back when everything sent is written; at once where it is.
  virtual void whenWritten(std::function<void()> callback) = 0;
  /// Bytes that were sent and not written yet.
  virtual std::size_t unwritten() const = 0;

  virtual std::optional<std::string> sessionId() const { return std::nullopt; }
  virtual bool supportsServerToClientRequests() const { return true; }
};

}  // namespace vell::mcp
