#include "cli/commands.h"
#include "cli/global_options.h"
#include "cli/row_options.h"

namespace vell::cli {
namespace {

void deleteRows(const Arguments& arguments, Console& console) {
  const ipc::RowDelete deletion{.rows = rowsOrSelection(arguments),
                                .outline = arguments.value(outlineOption)};
  callAndPrint(deletion, arguments, console);
}

constexpr const Option* options[] = {&rowsArgument, &outlineOption, &prettyOption};
constexpr Example examples[] = {
    {"delete rows 12 14", "Two rows and everything below them:"},
    {"delete rows '//task @done'", "All finished tasks:"},
};
constexpr Command rows{.name = "rows",
                       .abstract = "Delete rows + descendants.",
                       .options = options,
                       .examples = examples,
                       .run = deleteRows};

constexpr const Command* subcommands[] = {&rows};

}  // namespace

const Command deleteCommand{.name = "delete", .abstract = "Delete rows.", .subcommands = subcommands};

}  // namespace vell::cli
