// `vell get outlines`, the whole process, where the answer is small: starting up is the work.

#include "bench/answers.h"
#include "bench/rounds.h"
#include "bench/rows.h"
#include "bench/stage.h"

namespace vell::bench {
namespace {

constexpr const char* request = R"({"id":1,"jsonrpc":"2.0","method":"outline.list"})";

}  // namespace

void getOutlines(Table& table) {
  const Stage stage;
  writeOutlineList(stage.path("answer"));
  const auto application = stage.application(stage.path("answer"));
  const auto process = [](const Command& command) { return [command] { return run(command).seconds; }; };
  const auto times = medians({{"vell", process({stage.install(vell({})[0]), "get", "outlines"})},
                              {"C client", process({stage.install(program("raw_client")), request})}},
                             400);
  table.add({"get outlines, 1 KB, whole process", times[0], "C client, the same system calls", times[1],
             atMost(1.35)});
}

}  // namespace vell::bench
