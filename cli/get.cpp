#include <algorithm>

#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/outline_read.h"
#include "ipc/methods/editor.h"
#include "ipc/methods/evaluate.h"
#include "ipc/methods/outline.h"

namespace vell::cli {
namespace {

// Outlines and their rows.

constexpr std::string_view refsHelp =
    "Row refs to read. Default: `//*` (every row). A ref is a session id, persistent id, outline path "
    "(starts with "
    "`/`), `@selection`, or `@focused`. See `vell --help`.";

constexpr Option refs{.name = "--refs", .value = "row-refs", .help = refsHelp, .takes = Takes::list};
constexpr Option rowRefs{.name = "row-refs", .value = "row-refs", .help = refsHelp, .takes = Takes::list};

void refuseRefs(std::span<const std::string> typed) {
  const bool found = std::any_of(typed.begin(), typed.end(), [](const std::string& token) {
    return token == refs.name || token.starts_with("--refs=");
  });
  if (found) throw UsageError("--refs is not supported on `rows`; pass row refs positionally.");
}

void getOutline(const Arguments& arguments, Console& console) {
  fetchOutline({arguments, console}, arguments.values(refs), false, console);
}

void getOutlineRows(const Arguments& arguments, Console& console) {
  fetchOutline({arguments, console}, arguments.values(rowRefs), true, console);
}

constexpr const Option* rowsOptions[] = {&rowRefs, &outlineOption, &shapeOption, &outputOption,
                                         &prettyOption};
constexpr Example rowsExamples[] = {
    {"get outline rows @selection", "The row that holds the caret:"},
    {"get outline rows //task --shape flat", "All tasks, one after the other:"},
};
constexpr Command rows{
    .name = "rows",
    .abstract = "Read just the matching rows (no format wrapper).",
    .discussion =
        "Same options as `vell get outline`, but returns only the matched rows without the surrounding "
        "format structure/metadata. Pass <row-refs> to include only a subset of the outline's rows.",
    .options = rowsOptions,
    .examples = rowsExamples,
    .check = refuseRefs,
    .run = getOutlineRows,
};

constexpr const Option* outlineOptions[] = {&refs, &outlineOption, &shapeOption, &outputOption,
                                            &prettyOption};
constexpr const Command* outlineCommands[] = {&rows};
constexpr Example outlineExamples[] = {
    {"get outline -o markdown", "The frontmost outline as markdown:"},
    {"get outline 12 @focused //task", "Only some rows, named in three ways (the same as with --refs):"},
};
constexpr Command outline{
    .name = "outline",
    .abstract = "Read the outline encoded in chosen format.",
    .discussion =
        "Output is the complete outline encoding in the chosen output format. For just the rows without "
        "the surrounding format structure, use `vell get outline rows`. Use `--refs` to include only a "
        "subset of the outline's rows.",
    .options = outlineOptions,
    .subcommands = outlineCommands,
    .examples = outlineExamples,
    .run = getOutline,
};

constexpr const Option* globalOptions[] = {&prettyOption};
constexpr Example outlinesExamples[] = {{"get outlines --pretty", "What is open, easy to read:"}};
constexpr Command outlines{
    .name = "outlines",
    .abstract = "List open outlines (frontmost first).",
    .options = globalOptions,
    .examples = outlinesExamples,
    .run = [](const Arguments& arguments,
              Console& console) { callAndPrint(ipc::OutlineList{}, arguments, console); },
};

// Editors.

constexpr Option editorId{
    .name = "--editor", .value = "editor-id", .help = "Editor id (default: frontmost)."};
constexpr const Option* editorOptions[] = {&editorId, &prettyOption};
constexpr Example editorExamples[] = {{"get editor --pretty", "Where the caret is and what is folded:"}};
constexpr Command editor{
    .name = "editor",
    .abstract = "Read editor (default: frontmost, full-state).",
    .options = editorOptions,
    .examples = editorExamples,
    .run =
        [](const Arguments& arguments, Console& console) {
          callAndPrint(ipc::EditorGet{.editor = arguments.value(editorId)}, arguments, console);
        },
};

constexpr Example editorsExamples[] = {{"get editors", "Every window, with the outline that it edits:"}};
constexpr Command editors{
    .name = "editors",
    .abstract = "List editors (frontmost first, shallow-state).",
    .options = globalOptions,
    .examples = editorsExamples,
    .run = [](const Arguments& arguments,
              Console& console) { callAndPrint(ipc::EditorList{}, arguments, console); },
};

// Commands.

constexpr Example commandsExamples[] = {
    {"get commands --pretty", "Everything that the editor can be told to do:"}};
constexpr Command commands{
    .name = "commands",
    .abstract = "List available Vell commands.",
    .discussion = "Use these commands in `vell evaluate commands`.",
    .options = globalOptions,
    .examples = commandsExamples,
    .run = [](const Arguments& arguments,
              Console& console) { callAndPrint(ipc::CommandList{}, arguments, console); },
};

constexpr const Command* subcommands[] = {&editor, &editors, &outline, &outlines, &commands};

}  // namespace

const Command getCommand{
    .name = "get",
    .abstract = "Get editor, editors, outline, outlines, commands.",
    .subcommands = subcommands,
};

}  // namespace vell::cli
