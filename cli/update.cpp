#include <set>

#include "cli/commands.h"
#include "cli/options.h"
#include "ipc/methods.h"
#include "json/error.h"
#include "json/rewrite.h"
#include "text/utf8.h"

namespace vell::cli {
namespace {

// Rows.

/// Unicode's white space.
bool isBlank(char32_t c) {
  return (c >= '\t' && c <= '\r') || c == ' ' || c == 0x85 || c == 0xA0 || c == 0x1680 ||
         (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
         c == 0x3000;
}

std::string_view trimmed(std::string_view text) {
  std::size_t begin = 0, end = 0, at = 0;
  for (text::CodePoint c = text::firstCodePoint(text); c.length > 0;
       c = text::firstCodePoint(text.substr(at))) {
    if (isBlank(c.value) && end == 0) begin = at + c.length;
    at += c.length;
    if (!isBlank(c.value)) end = at;
  }
  return end == 0 ? std::string_view() : text.substr(begin, end - begin);
}

/// The styled runs that the text is a JSON array of; none for other texts.
std::optional<ipc::StyledRuns> styledRuns(std::string_view text) {
  if (!text.starts_with('[')) return std::nullopt;
  try {
    return ipc::StyledRuns{json::rewrite(text, json::Layout::compact)};
  } catch (const json::ParseError&) {
    return std::nullopt;
  }
}

/// Styled runs where the value is a JSON array, else markdown as typed.
std::optional<ipc::RowText> parseTextInput(const std::optional<std::string>& value) {
  if (!value) return std::nullopt;
  if (auto runs = styledRuns(trimmed(*value))) return std::move(*runs);
  return *value;
}

using Attributes = std::map<std::string, std::optional<std::string>>;

/// Attributes to set, each written "key=value", and keys to remove; none when both lists are empty.
std::optional<Attributes> parseAttrs(const std::vector<std::string>& set,
                                     const std::vector<std::string>& unset) {
  if (set.empty() && unset.empty()) return std::nullopt;
  Attributes attributes;
  for (const std::string& pair : set) {
    const std::size_t equals = pair.find('=');
    if (equals == std::string::npos) throw UsageError("Attribute must be key=value, got: '" + pair + "'");
    attributes[pair.substr(0, equals)] = pair.substr(equals + 1);
  }
  for (const std::string& key : unset) attributes[key] = std::nullopt;
  return attributes;
}

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
constexpr std::string_view rowTypes[] = {"body", "heading", "task",    "note",     "quote",
                                         "code", "hr",      "ordered", "unordered"};

constexpr Option type{
    .name = "--type",
    .value = "type",
    .help =
        "Row type (body, heading, task, note, quote, code, hr, ordered, unordered). Switching to "
        "a type that carries no text (e.g. `hr`) clears the row's text; undo in Vell restores "
        "it.",
    .suggestions = rowTypes};
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

/// Warns on standard error of the fields that were refused, once of each fault.
void warnOfFieldErrors(const ipc::Answer& answer, Console& console) {
  std::set<std::string> faults;
  for (const json::Node& entry : answer.result().elements()) {
    const auto errors = entry.find("fieldErrors");
    if (!errors) continue;
    for (const auto& [field, fault, at] : errors->members())
      faults.insert(field + ": " + fault.string().value_or(""));
  }
  for (const std::string& fault : faults) console.say("warning: " + fault + "\n");
}

void updateRows(const Arguments& arguments, Console& console) {
  const ipc::RowUpdate update{
      .rows = rowsOrSelection(arguments),
      .outline = arguments.value(outlineOption),
      .text = parseTextInput(arguments.value(text)),
      .append = parseTextInput(arguments.value(append)),
      .prepend = parseTextInput(arguments.value(prepend)),
      .type = arguments.value(type),
      .attributes = parseAttrs(arguments.values(attr), arguments.values(unset)),
      .persistentId = arguments.value(persistentId),
  };
  if (update.persistentId && update.rows.size() != 1) {
    throw UsageError("--persistent-id requires exactly one row ref.");
  }
  const ipc::Answer answer = callAndPrint(update, arguments, console);
  warnOfNoMatch(answer, update.rows, console);
  warnOfFieldErrors(answer, console);
}

const Command rows{
    .name = "rows",
    .discussion = "The same updates apply to every referenced row.",
    .options = {&rowsArgument, &outlineOption, &text, &append, &prepend, &type, &attr, &unset, &persistentId,
                &prettyOption},
    .examples = {{"update rows //task --attr color=red --unset done", "Every task turns red and open again:"},
                 {"update rows 12 --text 'Buy **oat** milk' --type task --attr done=true",
                  "Row 12 becomes a finished task with a new text:"}},
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
