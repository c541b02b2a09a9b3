#include "cli/commands.h"
#include "cli/console.h"
#include "cli/help.h"
#include "cli/parser.h"
#include "cli/shell_completion.h"

namespace vell::cli {
namespace {

/// The sections of the root's help that hold for all commands; laid out for 80 columns.
constexpr std::string_view orientation = R"(
ROW REFERENCES
  Commands that read or change rows are told which by references:

    12           a session id: the number that reads show as "id". It names the
                 row while its outline is open; rows that are read anew, because
                 another program changed the file, get new ones.
    6FJq2aTk     a persistent id: it stays with the row, in the file too.
    //task       an outline path, which begins with "/" and may match any number
                 of rows: '//heading[0]', '//task @done'. Quote it, for shells
                 have their own use for blanks, * and [ ].
    @selection   the row that holds the caret, or of several selected rows the
                 one that --select-head names.
    @focused     the row that the editor is focused into, else the root.

  References are separated by blanks. One that begins with "-" goes behind "--",
  or in one word with its option: --refs=-x.

PERSISTENT IDS
  Every outline has a persistent id (`vell get outlines` lists them), which
  --outline and `vell open outline id:<outline-id>` take. Where no open outline
  has such an id, --outline also takes the display name of an open outline or
  the path of its file. A row has a persistent id when it was given one:
  `vell update rows 12 --persistent-id groceries`. Session ids are for the next
  few commands; what a script keeps should be persistent ids.

OUTPUT FORMATS
  session    JSON for working with the rows at hand: "id" is the session id,
             "persistentId" stands beside it where the row has one.
  json       JSON for keeping: "id" is the persistent id, no session ids.
  markdown   Vell-flavored markdown: headings, tasks, lists, notes, quotes and
             code.
  vell       Vell's own file format, which keeps everything.
  opml       OPML, for other outliners.
  txt        Plain text, indented.

  Reads of an outline print JSON indented; all other results are one line, or
  indented with --pretty. Keys are sorted.

EXIT STATUS
  0    Success, also for help and version.
  1    The command failed; standard error says why.
  64   The command line is wrong; standard error says how.
  141  Standard output was closed by its reader.
)";

constexpr Option completionOption{
    .name = "--generate-completion-script",
    .value = "shell",
    .help = "Print a completion script: bash, zsh or fish.",
    .choices = shellNames,
};

void run(const Arguments& arguments, Console& console) {
  const auto shell = arguments.value(completionOption);
  console.out.write(shell ? std::string(completionScript(*shell))
                          : helpScreen(vellCommand, std::string(vellCommand.name)));
}

}  // namespace

const Command vellCommand{
    .name = "vell",
    .abstract = "Companion CLI for Vell.app",
    .discussion =
        "Open, get, and update Vell.app editors and outlines. Commands default to the frontmost editor and "
        "its outline. IMPORTANT: Use `man vell` for high level orientation.",
    .options = {&completionOption},
    .subcommands = {&openCommand, &closeCommand, &getCommand, &observeCommand, &createCommand, &updateCommand,
                    &moveCommand, &deleteCommand, &evaluateCommand, &mcpCommand},
    .examples = {{"open outline ~/notes/groceries.vell",
                  "Open a file, starting Vell when it is not running:"},
                 {"get outline -o markdown", "Read the frontmost outline as markdown:"},
                 {"create row --text '- [ ] Buy milk'", "Add a task to it:"},
                 {"update rows //task --attr color=red", "Colour all its tasks:"}},
    .appendix = orientation,
    .run = run,
};

}  // namespace vell::cli
