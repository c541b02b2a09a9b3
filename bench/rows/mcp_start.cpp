// The start of `vell mcp`: until `initialize` is answered.

#include "bench/mcp_session.h"
#include "bench/rounds.h"
#include "bench/rows.h"
#include "bench/stage.h"

namespace vell::bench {

void mcpStart(Table& table) {
  const Stage stage;
  const auto start = [](const Command& server) { return [server] { return secondsToInitialize(server); }; };
  const auto times = medians({{"vell", start({stage.install(vell({})[0]), "mcp"})},
                              {"C", start({stage.install(program("mcp_peer"))})}},
                             100);
  table.add({"mcp: start to initialize answered", times[0], "C, canned answer", times[1], atMost(4)});
}

}  // namespace vell::bench
