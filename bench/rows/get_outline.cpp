// `vell get outline`, the whole process, where the answer is large: reading, sorting and printing are the
// work.

#include "bench/answers.h"
#include "bench/rounds.h"
#include "bench/rows.h"
#include "bench/stage.h"

namespace vell::bench {
namespace {

void measure(Table& table, std::size_t megabytes, int rounds) {
  const Stage stage;
  const std::string answer = stage.path("answer");
  const double bytes = static_cast<double>(writeOutline(answer, megabytes * 1'000'000));
  const auto application = stage.application(answer);
  double peak = 0;
  const auto ours = [&] {
    const Cost cost = run(vell({"get", "outline"}), stage.path("printed"));
    peak = cost.peakBytes;
    return cost.seconds;
  };
  const auto process = [&](const Command& command) {
    return [&stage, command] { return run(command, stage.path("other")).seconds; };
  };
  const auto times = medians({{"vell", ours},
                              {"jq -S", process({"jq", "-S", ".", answer}), 2},
                              {"cp", process({"cp", answer, stage.path("copy")})}},
                             rounds);
  const std::string work = "get outline, " + std::to_string(megabytes) + " MB, keys shuffled";
  table.add({work, times[0], "jq -S", times[1], atLeast(10)});
  table.add({work, times[0], "cp of the answer", times[2], atMost(7)});
  table.add({"  its peak memory", peak, "size of the answer (peak memory)", bytes, atMost(2.5), Unit::bytes});
}

}  // namespace

void getOutline(Table& table) {
  measure(table, 20, 15);
  measure(table, 100, 7);
}

}  // namespace vell::bench
