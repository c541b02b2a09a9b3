// `vell mcp` where it needs no application: starting, a tool that answers at once, what it keeps in memory.

#include <fstream>
#include <stdexcept>

#include "bench/mcp_contest.h"
#include "bench/rounds.h"
#include "bench/rows.h"
#include "bench/stage.h"

namespace vell::bench {
namespace {

constexpr const char* tool = "vell_outline_path_check";
constexpr const char* arguments = R"({"path":"//task @done = \"true\""})";

/// What vell answers to the call, for the others to answer.
void writeResult(const std::string& file) {
  McpSession session(vell({"mcp"}));
  session.initialize();
  const std::string line(
      session.exchange(std::string(R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":")") +
                       tool + R"(","arguments":)" + arguments + "}}"));
  const std::size_t result = line.find("{\"content\":");
  if (result == std::string::npos) throw std::runtime_error("no result: " + line);
  std::ofstream(file) << line.substr(result, line.size() - result - 1);
}

void start(Table& table, const std::vector<Command>& servers) {
  std::vector<Contender> contenders;
  for (const Command& server : servers) {
    contenders.push_back({"", [server] { return secondsToInitialize(server); }, 100});
  }
  contenders.back().rounds = 10;
  const auto times = medians(contenders, 100);
  table.add({"mcp: start to initialize answered", times[0], "C, canned answers", times[1], atMost(4)});
  table.add({"mcp: start to initialize answered", times[0], "SDK server", times[2], {}});
}

void calls(Table& table, const std::vector<Command>& servers) {
  McpContest contest(servers);
  const double memory = contest.session(0).residentBytes();
  const double sdkMemory = contest.session(2).residentBytes();
  contest.call(tool, arguments);
  const auto times = contest.secondsPerCall(200, 30);
  table.add({"mcp: path check", times[0], "C, canned answers", times[1], atMost(3)});
  table.add({"mcp: path check", times[0], "SDK server, canned answer", times[2], {}});
  const auto rates = contest.pipelinedPerSecond(2000, 20);
  const std::string work = "mcp: path checks, pipelined";
  table.add({work, rates[0], "SDK server, canned answer", rates[2], atLeast(4), Unit::perSecond});
  table.add({work, rates[0], "C, canned answers", rates[1], {}, Unit::perSecond});
  table.add({"mcp: resident memory, idle", memory, "8 MB", 8e6, atMost(1), Unit::bytes});
  table.add({"mcp: resident memory, idle", memory, "SDK server", sdkMemory, {}, Unit::bytes});
}

}  // namespace

void mcpAnswered(Table& table) {
  const Stage stage;
  const std::string result = stage.path("result");
  writeResult(result);
  const std::vector<Command> servers = {{stage.install(vell({})[0]), "mcp"},
                                        {stage.install(program("mcp_peer")), "canned", result},
                                        sdkServer(result, stage.socket())};
  start(table, servers);
  calls(table, servers);
}

}  // namespace vell::bench
