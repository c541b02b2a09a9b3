#include "cli/commands.h"
#include "cli/options.h"
#include "ipc/methods.h"

namespace vell::cli {
namespace {

// A script.

constexpr Option file{.name = "--file",
                      .shortName = "-f",
                      .value = "path",
                      .help = "Path to a JavaScript file, or '-' for stdin.",
                      .required = true,
                      .file = true};
constexpr Option input{.name = "--input",
                       .value = "text",
                       .help = "Input forwarded to the script if it evaluates to an arrow function."};

void evaluateScript(const Arguments& arguments, Console& console) {
  const ipc::ScriptEvaluate evaluation{.script = console.read(*arguments.value(file)),
                                       .input = arguments.value(input)};
  callAndPrint(evaluation, arguments, console);
}

const Command script{
    .name = "script",
    .abstract = "Evaluate JavaScript in Vell's extension context.",
    .discussion =
        "Evaluate JavaScript in Vell's app context (JavaScriptCore). Pure JS only - no TypeScript syntax, no "
        "`import`/ESM. The script's return value (last expression) is the JSON result.\n\n"
        "The app API hangs off the `vell` global. Full type surface: "
        "Vell.app/Contents/Resources/scripting/vell.d.ts (`.d.ts` — translate to JS at the call site.)\n\n"
        "Example:\n  (() => vell.frontmostOutlineEditor?.selection?.word)()",
    .options = {&file, &input, &prettyOption},
    .examples = {{"evaluate script -f count.js --input task", "A script that is given a word:"}},
    .run = evaluateScript,
};

// Commands.

constexpr Option ids{.name = "ids",
                     .value = "ids",
                     .help =
                         "Command id(s) to evaluate in order (e.g. `row:block-move-up`, `format:heading`, "
                         "`fold:collapse-all`).",
                     .takes = Takes::list,
                     .required = true,
                     .missing = "At least one command id is required."};
constexpr Option editor{.name = "--editor",
                        .value = "editor-id",
                        .help = "Editor id (default: frontmost). See `vell get editors`."};

void evaluateCommands(const Arguments& arguments, Console& console) {
  const ipc::CommandPerform performance{.editor = arguments.value(editor), .ids = arguments.values(ids)};
  callAndPrint(performance, arguments, console);
}

const Command commands{.name = "commands",
                       .abstract =
                           "Perform one or more named editor commands. Use `vell get commands` to list "
                           "available commands.",
                       .options = {&ids, &editor, &prettyOption},
                       .examples = {{"evaluate commands row:toggle-done row:block-move-up",
                                     "Two commands, one after the other:"}},
                       .run = evaluateCommands};

}  // namespace

const Command evaluateCommand{
    .name = "evaluate", .abstract = "Evaluate script, commands.", .subcommands = {&script, &commands}};

}  // namespace vell::cli
