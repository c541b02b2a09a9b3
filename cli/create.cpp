#include "cli/commands.h"
#include "cli/create_outline.h"
#include "cli/global_options.h"
#include "cli/input.h"
#include "cli/shared_options.h"
#include "ipc/methods.h"

namespace vell::cli {
namespace {

// Where new rows go.

constexpr Option parent{
    .name = "--parent", .value = "row-ref", .help = "Parent row ref (default: outline root)."};
constexpr Option position{
    .name = "--position", .value = "position", .help = "Position: start | end | <integer index>."};
constexpr Option before{.name = "--before", .value = "row-ref", .help = "Insert before this sibling."};
constexpr Option after{.name = "--after", .value = "row-ref", .help = "Insert after this sibling."};

ipc::RowPlace place(const Arguments& arguments) {
  return {.parent = arguments.value(parent),
          .position = arguments.value(position),
          .before = arguments.value(before),
          .after = arguments.value(after)};
}

// One row.

constexpr Option text{
    .name = "--text",
    .value = "markdown",
    .help =
        "Vell-flavored markdown for one row, single line (default: ''). Use `vell create rows` "
        "for multi-row or hierarchical input."};

void createRow(const Arguments& arguments, Console& console) {
  const ipc::RowCreate creation{.markdown = arguments.value(text).value_or(""),
                                .outline = arguments.value(outlineOption),
                                .place = place(arguments)};
  callAndPrint(creation, arguments, console);
}

const Command row{
    .name = "row",
    .options = {&outlineOption, &parent, &position, &before, &after, &text, &prettyOption},
    .examples = {{"create row --text 'Call **Ada**'", "A row at the end of the frontmost outline:"},
                 {"create row --parent 12 --position start --text '- [ ] Buy milk'",
                  "A task as the first child of row 12:"}},
    .run = createRow};

// Rows from a file.

constexpr Option file{.name = "--file",
                      .shortName = "-f",
                      .value = "path",
                      .help = "Path to a markdown file, or '-' for stdin.",
                      .required = true,
                      .file = true};

void createRows(const Arguments& arguments, Console& console) {
  const ipc::RowCreateMany creation{.markdown = readInput(*arguments.value(file), console),
                                    .outline = arguments.value(outlineOption),
                                    .place = place(arguments)};
  callAndPrint(creation, arguments, console);
}

const Command rows{
    .name = "rows",
    .abstract = "Create row hierarchy from Vell-flavored markdown.",
    .options = {&file, &outlineOption, &parent, &position, &before, &after, &prettyOption},
    .examples = {{"create rows -f notes.md --parent @selection",
                  "A markdown file as children of the selected row:"},
                 {"create rows --file - --before 12", "What a pipe delivers, in front of row 12:"}},
    .run = createRows};

}  // namespace

const Command createCommand{.name = "create",
                            .abstract = "Create outline, row, rows.",
                            .subcommands = {&createOutlineCommand, &row, &rows}};

}  // namespace vell::cli
