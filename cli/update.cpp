#include "cli/commands.h"
#include "cli/global_options.h"
#include "cli/row_options.h"
#include "ipc/methods.h"

namespace vell::cli {
namespace {

// Rows.

constexpr Option text{
    .name = "--text",
    .value = "markdown-or-json",
    .help =
        "Replace the row's text. Vell-flavored markdown, or a JSON array of `{string, attrs?}` "
        "runs."};
constexpr Option append{.name = "--append",
                        .value = "markdown-or-json",
                        .help = "Append to the row's text. Same input forms as --text."};
constexpr Option prepend{.name = "--prepend",
                         .value = "markdown-or-json",
                         .help = "Prepend to the row's text. Same input forms as --text."};
constexpr Option type{
    .name = "--type",
    .value = "type",
    .help =
        "Row type (body, heading, task, note, quote, code, hr, ordered, unordered). Switching to "
        "a type that carries no text (e.g. `hr`) clears the row's text; undo in Vell restores "
        "it."};
constexpr Option attr{.name = "--attr",
                      .value = "key=value",
                      .help = "Set attribute key=value (repeatable).",
                      .takes = Takes::each};
constexpr Option unset{
    .name = "--unset", .value = "key", .help = "Remove attribute by key (repeatable).", .takes = Takes::each};
constexpr Option persistentId{
    .name = "--persistent-id",
    .value = "id",
    .help = "Assign a persistent id (requires exactly one row ref). See `vell --help`."};

std::optional<ipc::RowText> textInput(const Arguments& arguments, const Option& option) {
  const auto value = arguments.value(option);
  if (!value) return std::nullopt;
  return parseTextInput(*value);
}

void updateRows(const Arguments& arguments, Console& console) {
  const ipc::RowUpdate update{
      .rows = rowsOrSelection(arguments),
      .outline = arguments.value(outlineOption),
      .text = textInput(arguments, text),
      .append = textInput(arguments, append),
      .prepend = textInput(arguments, prepend),
      .type = arguments.value(type),
      .attributes = parseAttrs(arguments.values(attr), arguments.values(unset)),
      .persistentId = arguments.value(persistentId),
  };
  if (update.persistentId && update.rows.size() != 1) {
    throw UsageError("--persistent-id requires exactly one row ref.");
  }
  callAndPrint(update, arguments, console);
}

const Command rows{
    .name = "rows",
    .discussion = "The same updates apply to every referenced row.",
    .options = {&rowsArgument, &outlineOption, &text, &append, &prepend, &type, &attr, &unset, &persistentId,
                &prettyOption},
    .examples = {{"update rows //task --attr color=red --unset done", "Every task turns red and open again:"},
                 {"update rows 12 --text '- [x] Buy **oat** milk'", "A new text for row 12:"}},
    .run = updateRows};

// The editor.

constexpr Option focus{.name = "--focus", .value = "row-ref", .help = "Focus into this row."};
constexpr Option select{.name = "--select", .value = "row-ref", .help = "Move the selection to this row."};
constexpr Option selectHead{
    .name = "--select-head", .value = "row-ref", .help = "Optional selection head. Requires --select."};
constexpr Option expand{.name = "--expand",
                        .value = "row-refs",
                        .help = "Row refs to expand. See `vell --help`.",
                        .takes = Takes::list};
constexpr Option collapse{.name = "--collapse",
                          .value = "row-refs",
                          .help = "Row refs to collapse. See `vell --help`.",
                          .takes = Takes::list};

std::optional<std::vector<std::string>> unlessEmpty(const std::vector<std::string>& references) {
  if (references.empty()) return std::nullopt;
  return references;
}

void updateEditor(const Arguments& arguments, Console& console) {
  const ipc::EditorUpdate update{
      .focus = arguments.value(focus),
      .selectRow = arguments.value(select),
      .selectHead = arguments.value(selectHead),
      .expand = unlessEmpty(arguments.values(expand)),
      .collapse = unlessEmpty(arguments.values(collapse)),
      .outline = arguments.value(outlineOption),
  };
  if (update.selectHead && !update.selectRow) throw UsageError("--select-head requires --select.");
  callAndPrint(update, arguments, console);
}

const Command editor{
    .name = "editor",
    .options = {&focus, &select, &selectHead, &expand, &collapse, &outlineOption, &prettyOption},
    .examples = {{"update editor --focus 12 --collapse 14 15", "Into row 12, with two of its rows folded:"},
                 {"update editor --select '//heading[0]'", "The caret to the first heading:"}},
    .run = updateEditor};

}  // namespace

const Command updateCommand{
    .name = "update", .abstract = "Update editor, rows.", .subcommands = {&editor, &rows}};

}  // namespace vell::cli
