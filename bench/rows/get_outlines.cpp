// `vell get outlines`, the whole process, where the answer is small: starting up is the work.

#include "bench/answers.h"
#include "bench/rounds.h"
#include "bench/rows.h"
#include "bench/stage.h"

namespace vell::bench {
namespace {

constexpr const char* request = R"({"id":1,"jsonrpc":"2.0","method":"outline.list"})";

constexpr const char* pythonClient = R"py(
import json, os, socket
s = socket.socket(socket.AF_UNIX); s.connect(os.environ["HOME"] + "/Library/Containers/app.vell.Vell/Data/cli.sock")
s.sendall(b'{"id":1,"jsonrpc":"2.0","method":"outline.list"}\n')
print(json.dumps(json.loads(s.makefile().readline())["result"], sort_keys=True)))py";

constexpr const char* nodeClient = R"js(
const s = require("net").connect(process.env.HOME + "/Library/Containers/app.vell.Vell/Data/cli.sock");
s.write('{"id":1,"jsonrpc":"2.0","method":"outline.list"}\n');
s.on("data", d => { console.log(JSON.stringify(JSON.parse(d).result)); s.end(); }))js";

}  // namespace

void getOutlines(Table& table) {
  const Stage stage;
  writeOutlineList(stage.path("answer"));
  const auto application = stage.application(stage.path("answer"));
  const std::string pipeline = std::string("printf '%s\\n' '") + request +
                               "' | socat -t5 - UNIX-CONNECT:" + stage.socket() +
                               " | head -n 1 | jq -cS .result";
  const auto process = [](const Command& command) { return [command] { return run(command).seconds; }; };
  const auto times = medians({{"vell", process({stage.install(vell({})[0]), "get", "outlines"})},
                              {"C client", process({stage.install(program("raw_client")), request})},
                              {"socat + jq", process({"sh", "-c", pipeline}), 20},
                              {"python", process({"python3", "-c", pythonClient}), 20},
                              {"node", process({"node", "-e", nodeClient}), 20}},
                             400);
  const std::string work = "get outlines, 1 KB, whole process";
  table.add({work, times[0], "C client, the same system calls", times[1], atMost(1.25)});
  table.add({work, times[0], "socat + jq", times[2], {}});
  table.add({work, times[0], "python3 one-liner", times[3], {}});
  table.add({work, times[0], "node one-liner", times[4], {}});
}

}  // namespace vell::bench
