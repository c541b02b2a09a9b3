#include "bench/mcp_contest.h"

#include <stdexcept>

#include "bench/clock.h"
#include "bench/rounds.h"

namespace vell::bench {

McpContest::McpContest(const std::vector<Command>& servers) {
  for (const Command& server : servers) {
    sessions_.push_back(std::make_unique<McpSession>(server));
    sessions_.back()->initialize();
  }
}

std::string McpContest::line(int id) const {
  return R"({"jsonrpc":"2.0","id":)" + std::to_string(id) + call_;
}

void McpContest::call(const std::string& tool, const std::string& arguments) {
  call_ = R"(,"method":"tools/call","params":{"name":")" + tool + R"(","arguments":)" + arguments + "}}";
  for (const auto& session : sessions_) {
    const std::string answer(session->exchange(line(4711)));
    const bool answered = answer.find(R"("id":4711)") != std::string::npos &&
                          answer.find(R"("result":)") != std::string::npos &&
                          answer.find("isError") == std::string::npos;
    if (!answered) throw std::runtime_error("not what was asked for: " + answer.substr(0, 200));
  }
}

std::vector<double> McpContest::secondsPerCall(int calls, int rounds) const {
  std::vector<Contender> contenders;
  for (const auto& each : sessions_) {
    contenders.push_back({"", [calls, request = line(7), session = each.get()] {
                            return secondsFor(calls, [&] { session->exchange(request); });
                          }});
  }
  return medians(contenders, rounds);
}

std::vector<double> McpContest::pipelinedPerSecond(int calls, int rounds) const {
  std::string requests;
  for (int id = 1; id <= calls; ++id) requests += line(id) + "\n";
  std::vector<Contender> contenders;
  for (const auto& each : sessions_) {
    contenders.push_back({"", [calls, &requests, session = each.get()] {
                            return calls / secondsFor(1, [&] {
                                     session->exchangeAll(requests, static_cast<std::size_t>(calls));
                                   });
                          }});
  }
  return medians(contenders, rounds);
}

}  // namespace vell::bench
