#include "cli/options.h"

#include "json/rewrite.h"

namespace vell::cli {

std::vector<std::string> rowsOrSelection(const Arguments& arguments) {
  return arguments.has(rowsArgument) ? arguments.values(rowsArgument)
                                     : std::vector<std::string>{"@selection"};
}

void GlobalOptions::print(const json::Node& data) const {
  if (data.kind() == json::Kind::string) warnPrettyIgnored("text-format output");
  json::write(data, pretty ? json::Layout::indented : json::Layout::compact, console_.out);
  console_.out.write("\n");
}

void GlobalOptions::warnPrettyIgnored(std::string_view label) const {
  if (!pretty) return;
  console_.say("warning: --pretty has no effect on " + std::string(label) + " (JSON formats only)\n");
}

}  // namespace vell::cli
