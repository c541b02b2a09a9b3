#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "mcp/transport.h"

namespace asio {
class io_context;
}

namespace vell::mcp {

/// Messages over a pair of descriptors, one a line, on the event loop. While connected both descriptors are
/// non-blocking; they get their flags back on disconnecting and on destruction, and stay open.
class StdioTransport : public Transport {
 public:
  static constexpr int standardInput = 0;
  static constexpr int standardOutput = 1;

  explicit StdioTransport(asio::io_context& loop, int input = standardInput, int output = standardOutput,
                          Logger logger = Logger("mcp.transport.stdio"));
  ~StdioTransport() override;

  const Logger& logger() const override;
  void connect(Receiver receiver) override;
  void disconnect() override;
  void send(std::string message) override;
  void whenWritten(std::function<void()> callback) override;
  std::size_t unwritten() const override;

 private:
  class Connection;

  asio::io_context& loop_;
  int input_;
  int output_;
  Logger logger_;
  std::shared_ptr<Connection> connection_;  // none while disconnected
};

}  // namespace vell::mcp
