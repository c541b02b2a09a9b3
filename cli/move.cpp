#include "cli/commands.h"
#include "cli/options.h"
#include "ipc/methods.h"

namespace vell::cli {
namespace {

constexpr Option to{.name = "--to",
                    .value = "row-ref",
                    .help = "Destination parent. Required unless --before or --after is given."};
constexpr Option position{.name = "--position",
                          .value = "position",
                          .help = "Position under --to: start | end (default) | <integer index>.",
                          .suggestions = positionNames};
constexpr Option before{.name = "--before",
                        .value = "row-ref",
                        .help = "Move before this sibling. Required unless --to or --after is given."};
constexpr Option after{.name = "--after",
                       .value = "row-ref",
                       .help = "Move after this sibling. Required unless --to or --before is given."};

void moveRows(const Arguments& arguments, Console& console) {
  const ipc::RowMove move{
      .rows = rowsOrSelection(arguments),
      .to = arguments.value(to),
      .position = arguments.value(position),
      .before = arguments.value(before),
      .after = arguments.value(after),
      .outline = arguments.value(outlineOption),
  };
  if (!move.to && !move.before && !move.after) throw UsageError("Specify --to, --before, or --after.");
  warnOfNoMatch(callAndPrint(move, arguments, console), move.rows, console);
}

const Command rows{
    .name = "rows",
    .options = {&rowsArgument, &to, &position, &before, &after, &outlineOption, &prettyOption},
    .examples = {{"move rows 12 14 --to 3 --position start", "Two rows become the first children of row 3:"},
                 {"move rows --before 20", "The selected row goes in front of row 20:"}},
    .run = moveRows};

}  // namespace

const Command moveCommand{.name = "move", .abstract = "Move rows.", .subcommands = {&rows}};

}  // namespace vell::cli
