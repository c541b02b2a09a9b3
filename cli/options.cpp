#include "cli/options.h"

#include "outline_path/near_miss.h"

namespace vell::cli {
namespace {

/// Whether an answer that is about rows, their number or a text made of them is about none.
bool holdsNoRow(const json::Node& answer) {
  if (answer.kind() == json::Kind::array) return answer.elements().empty();
  if (answer.kind() == json::Kind::string) return answer.string()->empty();
  if (const auto rows = answer.find("rows")) return holdsNoRow(*rows);
  const auto deleted = answer.find("deleted");
  return deleted && deleted->integer() == 0;
}

}  // namespace

std::vector<std::string> rowsOrSelection(const Arguments& arguments) {
  return arguments.has(rowsArgument) ? arguments.values(rowsArgument)
                                     : std::vector<std::string>{"@selection"};
}

std::optional<std::string> namedOrPlain(const Arguments& arguments, const Option& named,
                                        const Option& plain) {
  if (arguments.has(named) && arguments.has(plain)) throw UsageError(givenTwice(named, plain));
  return arguments.value(arguments.has(named) ? named : plain);
}

std::string givenTwice(const Option& named, const Option& plain) {
  return "Give one " + std::string(plain.name) + " only, as an argument or with " + std::string(named.name) +
         ".";
}

void warnOfNoMatch(const ipc::Answer& answer, const std::vector<std::string>& references, Console& console) {
  if (references.empty() || !holdsNoRow(answer.result())) return;
  std::string list, hint;
  for (const std::string& reference : references) {
    list += (list.empty() ? "" : ", ") + reference;
    if (hint.empty()) hint = outline_path::hintForNoMatch(reference);
  }
  console.say("warning: no row matches " + list + (hint.empty() ? "" : " (" + hint + ")") + "\n");
}

void GlobalOptions::print(const json::Node& data) const {
  if (data.kind() == json::Kind::string) warnPrettyIgnored("text-format output");
  console_.print(data, pretty ? json::Layout::indented : json::Layout::compact);
}

void GlobalOptions::warnPrettyIgnored(std::string_view label) const {
  if (!pretty) return;
  console_.say("warning: --pretty has no effect on " + std::string(label) + " (JSON formats only)\n");
}

}  // namespace vell::cli
