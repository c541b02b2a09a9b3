#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bench/mcp_session.h"

namespace vell::bench {

/// MCP servers that all get the same requests, in turn.
class McpContest {
 public:
  /// Starts them all and goes through the handshake.
  explicit McpContest(const std::vector<Command>& servers);

  /// The call that is measured from now on; throws where a server fails it.
  void call(const std::string& tool, const std::string& arguments = "{}");
  /// The seconds of one call after the other, the median for each server.
  std::vector<double> secondsPerCall(int calls, int rounds) const;
  /// The calls per second where none waits for the answer to the one before.
  std::vector<double> pipelinedPerSecond(int calls, int rounds) const;

 private:
  std::string line(int id) const;

  std::vector<std::unique_ptr<McpSession>> sessions_;
  std::string call_;  // of a request line, behind the id
};

}  // namespace vell::bench
