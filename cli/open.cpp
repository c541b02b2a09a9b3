#include <cmath>
#include <cstdlib>

#include "cli/commands.h"
#include "cli/options.h"
#include "ipc/vell_client.h"
#include "outlines/opening.h"

namespace vell::cli {
namespace {

constexpr Option path{.name = "path",
                      .value = "path",
                      .help = "Filesystem path or `id:<outline-id>`.",
                      .required = true,
                      .file = true};
constexpr Option timeout{
    .name = "--timeout", .value = "seconds", .help = "Seconds to wait for open. (default: 5)."};

double seconds(const Arguments& arguments) {
  constexpr double otherwise = 5;
  const auto value = arguments.value(timeout);
  if (!value) return otherwise;
  const bool decimal = value->find_first_not_of("+-.0123456789eE") == std::string::npos;
  char* end = nullptr;
  const double number = std::strtod(value->c_str(), &end);
  if (!decimal || value->empty() || *end != '\0' || !std::isfinite(number) || number <= 0) {
    throw UsageError("--timeout takes a positive number of seconds, got: '" + *value + "'");
  }
  return number;
}

ipc::Answer opened(const std::string& where, double limit, Console& console) {
  WaitingLine line(console, openingOfOutline);
  ipc::ReconnectingClient application(line.whenSlow());
  return outlines::openOutline(application, where, {.timeout = limit, .onPoll = line.whilePolling()});
}

void openOutline(const Arguments& arguments, Console& console) {
  if (arguments.value(path)->empty()) throw UsageError("The path is empty.");
  const ipc::Answer outline = opened(*arguments.value(path), seconds(arguments), console);
  GlobalOptions(arguments, console).print(outline.result());
}

const Command outline{
    .name = "outline",
    .options = {&path, &timeout, &prettyOption},
    .examples = {{"open outline ~/notes/groceries.vell", "A file, starting Vell when it is not running:"},
                 {"open outline id:6FJq2a --timeout 20",
                  "An outline by its persistent id, wherever its file lies:"}},
    .run = openOutline};

}  // namespace

const Command openCommand{.name = "open", .abstract = "Open outline.", .subcommands = {&outline}};

}  // namespace vell::cli
