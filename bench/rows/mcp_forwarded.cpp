// `vell mcp` where the application has the answer.

#include "bench/answers.h"
#include "bench/mcp_contest.h"
#include "bench/rows.h"
#include "bench/stage.h"

namespace vell::bench {
namespace {

void small(Table& table) {
  const Stage stage;
  writeOutlineList(stage.path("answer"));
  const auto application = stage.application(stage.path("answer"));
  McpContest contest({vell({"mcp"}), {program("mcp_peer"), stage.socket()}, sdkServer(stage.socket())});
  contest.call("vell_get_outlines");
  const auto times = contest.secondsPerCall(200, 40);
  table.add({"mcp: forwarded call, 1 KB", times[0], "C forwarder", times[1], atMost(2)});
  table.add({"mcp: forwarded call, 1 KB", times[0], "SDK server", times[2], atLeast(3)});
  const auto rates = contest.pipelinedPerSecond(2000, 20);
  const std::string work = "mcp: forwarded calls, pipelined";
  table.add({work, rates[0], "C forwarder", rates[1], atLeast(0.5), Unit::perSecond});
  table.add({work, rates[0], "SDK server", rates[2], atLeast(2), Unit::perSecond});
}

void large(Table& table) {
  const Stage stage;
  writeOutline(stage.path("answer"), 1'000'000);
  const auto application = stage.application(stage.path("answer"));
  McpContest contest({vell({"mcp"}), sdkServer(stage.socket())});
  contest.call("vell_get_outline");
  const auto times = contest.secondsPerCall(10, 20);
  table.add({"mcp: forwarded result of 1 MB", times[0], "SDK server", times[1], atLeast(4)});
}

}  // namespace

void mcpForwarded(Table& table) {
  small(table);
  large(table);
}

}  // namespace vell::bench
