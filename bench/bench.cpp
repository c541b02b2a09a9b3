// Measures vell beside others who do the same work, in the same run. scripts/bench calls it.
// usage: vell_bench [ROW…]   (all usual rows where none is named)

#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "bench/rows.h"

namespace {

using namespace vell::bench;

constexpr struct {
  const char* name;
  void (*measure)(Table&);
  bool isUsual = true;
} rows[] = {
    {"get-outlines", getOutlines},
    {"get-outline", getOutline},
    {"mcp-start", mcpStart},
    {"mcp-forwarded", mcpForwarded},
    {"path-parse", pathParse},
    {"growth", growth},
    {"growth-quick", growthQuick, false},
    // Last: it fills this process with memory, which the system counts for the programs started from it.
    {"path-evaluate", pathEvaluate},
};

}  // namespace

int main(int count, char** arguments) {
  const std::vector<std::string> wanted(arguments + 1, arguments + count);
  try {
    Table table;
    for (const auto& row : rows) {
      const bool isNamed = std::find(wanted.begin(), wanted.end(), row.name) != wanted.end();
      if (isNamed || (wanted.empty() && row.isUsual)) row.measure(table);
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vell_bench: %s\n", error.what());
    return 1;
  }
}
