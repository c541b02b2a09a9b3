#include "cli/commands.h"
#include "cli/completion.h"
#include "cli/orientation.h"

namespace vell::cli {
namespace {}  // namespace

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
    .run = runRoot,
};

}  // namespace vell::cli
