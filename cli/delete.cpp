#include "cli/commands.h"
#include "cli/options.h"
#include "ipc/methods.h"

namespace vell::cli {
namespace {

void deleteRows(const Arguments& arguments, Console& console) {
  const ipc::RowDelete deletion{.rows = rowsOrSelection(arguments),
                                .outline = arguments.value(outlineOption)};
  warnOfNoMatch(callAndPrint(deletion, arguments, console), deletion.rows, console);
}

const Command rows{.name = "rows",
                   .abstract = "Delete rows + descendants.",
                   .options = {&rowsArgument, &outlineOption, &prettyOption},
                   .examples = {{"delete rows 12 14", "Two rows and everything below them:"},
                                {"delete rows '//task @done'", "All finished tasks:"}},
                   .run = deleteRows};

}  // namespace

const Command deleteCommand{.name = "delete", .abstract = "Delete rows.", .subcommands = {&rows}};

}  // namespace vell::cli
