#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/console.h"
#include "cli/outline_naming.h"
#include "cli/parser.h"
#include "cli/waiting_line.h"
#include "ipc/message.h"
#include "ipc/vell_client.h"
#include "json/document.h"

// Options that several commands share.
namespace vell::cli {

inline constexpr Option prettyOption{
    .name = "--pretty", .help = "Pretty-print JSON output.", .takes = Takes::nothing};

inline constexpr Option outlineOption{
    .name = "--outline", .value = "outline-id", .help = "Outline persistant id (default: frontmost)."};

/// Positions that are words.
inline constexpr std::string_view positionNames[] = {"start", "end"};

/// Rows to change.
inline constexpr Option rowsArgument{.name = "rows",
                                     .value = "row-refs",
                                     .help = "Row refs (default: @selection). See `vell --help`.",
                                     .takes = Takes::list};

/// The references of `rowsArgument`, `@selection` when there are none.
std::vector<std::string> rowsOrSelection(const Arguments& arguments);

/// The value of an option that may as well be given as a plain argument. Throws UsageError where it is given
/// both ways.
std::optional<std::string> namedOrPlain(const Arguments& arguments, const Option& named, const Option& plain);
/// What to say then.
std::string givenTwice(const Option& named, const Option& plain);

/// What every command is told about its output.
class GlobalOptions {
 public:
  GlobalOptions(const Arguments& arguments, Console& console)
      : pretty(arguments.has(prettyOption)), console_(console) {}

  const bool pretty;

  /// Writes one result and a line feed: compact, or indented with `--pretty`.
  void print(const json::Node& data) const;
  /// Says on standard error that `--pretty` does nothing for output called `label`, when it was given.
  void warnPrettyIgnored(std::string_view label) const;

 private:
  Console& console_;
};

/// Sends one of the params records on a connection of its own.
template <class Record>
ipc::Answer call(const Record& record, Console& console) {
  WaitingLine line(console, vellToAnswer);
  ipc::VellClient client;
  client.whenSlow(line.whenSlow());
  return sendNaming(record, client, [&client](const Record& each) { return client.request(each); });
}

/// The same, and prints the answer.
template <class Record>
ipc::Answer callAndPrint(const Record& record, const Arguments& arguments, Console& console) {
  ipc::Answer answer = call(record, console);
  GlobalOptions(arguments, console).print(answer.result());
  return answer;
}

/// Warns on standard error that the references match nothing, where there are some and the answer holds no
/// row.
void warnOfNoMatch(const ipc::Answer& answer, const std::vector<std::string>& references, Console& console);

}  // namespace vell::cli
