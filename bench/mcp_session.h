#pragma once

#include <string>
#include <string_view>

#include "bench/process.h"

namespace vell::bench {

/// An MCP server on two pipes, and its client. Everything throws where the server is gone.
class McpSession {
 public:
  /// Starts the program; the session still waits for `initialize`.
  explicit McpSession(const Command& command);
  McpSession(const McpSession&) = delete;
  McpSession& operator=(const McpSession&) = delete;
  /// Ends the input and waits for the program's end.
  ~McpSession();

  /// Returns when the answer is there.
  void initialize();
  /// Sends one line, gives the next one, both without line feed. The view lives until the next call.
  std::string_view exchange(std::string_view request);
  /// Sends that many lines as fast as they are taken; returns when as many have come back.
  void exchangeAll(const std::string& lines, std::size_t count);

 private:
  std::string_view receive();

  pid_t process_ = 0;
  int toServer_ = -1;
  int fromServer_ = -1;
  std::string arrived_;
  std::size_t taken_ = 0;  // of what arrived
};

/// Starts a server and ends it; the seconds until its answer to `initialize`.
double secondsToInitialize(const Command& command);

}  // namespace vell::bench
