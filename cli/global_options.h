#pragma once

#include <string_view>

#include "cli/console.h"
#include "cli/parser.h"
#include "ipc/vell_client.h"
#include "json/document.h"

namespace vell::cli {

inline constexpr Option prettyOption{
    .name = "--pretty", .help = "Pretty-print JSON output.", .takes = Takes::nothing};

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

/// Sends one of the records of ipc/methods.h on a connection of its own and prints the answer.
template <class Record>
void callAndPrint(const Record& record, const Arguments& arguments, Console& console) {
  ipc::VellClient client;
  GlobalOptions(arguments, console).print(client.request(record).result());
}

}  // namespace vell::cli
