#include <algorithm>

#include "cli/commands.h"
#include "cli/outline_read.h"
#include "ipc/methods.h"

namespace vell::cli {
namespace {

// Outlines and their rows.

constexpr std::string_view refsHelp =
    "Row refs to read. Default: `//*` (every row). A ref is a session id, persistent id, outline path "
    "(starts with "
    "`/`), `@selection`, or `@focused`. See `vell --help`.";

constexpr Option refs{.name = "--refs", .value = "row-refs", .help = refsHelp, .takes = Takes::list};
constexpr Option rowRefs{.name = "row-refs", .value = "row-refs", .help = refsHelp, .takes = Takes::list};

std::string refuseRefs(const ArgumentList& typed) {
  const bool found = std::any_of(typed.begin(), typed.end(), [](const std::string& word) {
    return word == refs.name || word.starts_with(std::string(refs.name) + "=");
  });
  return found ? "--refs is not supported on `rows`; pass row refs positionally." : "";
}

void getOutline(const Arguments& arguments, Console& console) {
  fetchOutline({arguments, console}, arguments.values(refs), false, console);
}

void getOutlineRows(const Arguments& arguments, Console& console) {
  fetchOutline({arguments, console}, arguments.values(rowRefs), true, console);
}

const Command rows{
    .name = "rows",
    .abstract = "Read just the matching rows (no format wrapper).",
    .discussion =
        "Same options as `vell get outline`, but returns only the matched rows without the surrounding "
        "format structure/metadata. Pass <row-refs> to include only a subset of the outline's rows.",
    .options = {&rowRefs, &outlineOption, &shapeOption, &outputOption, &prettyOption},
    .examples = {{"get outline rows @selection", "The row that holds the caret:"},
                 {"get outline rows //task --shape flat", "All tasks, one after the other:"}},
    .check = refuseRefs,
    .run = getOutlineRows,
};

const Command outline{
    .name = "outline",
    .abstract = "Read the outline encoded in chosen format.",
    .discussion =
        "Output is the complete outline encoding in the chosen output format. For just the rows without "
        "the surrounding format structure, use `vell get outline rows`. Use `--refs` to include only a "
        "subset of the outline's rows.",
    .options = {&refs, &outlineOption, &shapeOption, &outputOption, &prettyOption},
    .subcommands = {&rows},
    .examples = {{"get outline -o markdown", "The frontmost outline as markdown:"},
                 {"get outline 12 @focused //task",
                  "Only some rows, named in three ways (the same as with --refs):"}},
    .plainArguments = &refs,
    .run = getOutline,
};

const Command outlines{
    .name = "outlines",
    .abstract = "List open outlines (frontmost first).",
    .options = {&prettyOption},
    .examples = {{"get outlines --pretty", "What is open, easy to read:"}},
    .run = [](const Arguments& arguments,
              Console& console) { callAndPrint(ipc::OutlineList{}, arguments, console); },
};

// Editors.

constexpr Option editorId{
    .name = "--editor", .value = "editor-id", .help = "Editor id (default: frontmost)."};
const Command editor{
    .name = "editor",
    .abstract = "Read editor (default: frontmost, full-state).",
    .options = {&editorId, &prettyOption},
    .examples = {{"get editor --pretty", "Where the caret is and what is folded:"}},
    .run =
        [](const Arguments& arguments, Console& console) {
          callAndPrint(ipc::EditorGet{.editor = arguments.value(editorId)}, arguments, console);
        },
};

const Command editors{
    .name = "editors",
    .abstract = "List editors (frontmost first, shallow-state).",
    .options = {&prettyOption},
    .examples = {{"get editors", "Every window, with the outline that it edits:"}},
    .run = [](const Arguments& arguments,
              Console& console) { callAndPrint(ipc::EditorList{}, arguments, console); },
};

// Commands.

const Command commands{
    .name = "commands",
    .abstract = "List available Vell commands.",
    .discussion = "Use these commands in `vell evaluate commands`.",
    .options = {&prettyOption},
    .examples = {{"get commands --pretty", "Everything that the editor can be told to do:"}},
    .run = [](const Arguments& arguments,
              Console& console) { callAndPrint(ipc::CommandList{}, arguments, console); },
};

}  // namespace

const Command getCommand{
    .name = "get",
    .abstract = "Get editor, editors, outline, outlines, commands.",
    .subcommands = {&editor, &editors, &outline, &outlines, &commands},
};

}  // namespace vell::cli
