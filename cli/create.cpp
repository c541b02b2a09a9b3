#include "cli/commands.h"
#include "cli/options.h"
#include "ipc/methods.h"
#include "ipc/vell_client.h"
#include "outlines/creation.h"
#include "outlines/location.h"

namespace vell::cli {
namespace {

// An outline.

constexpr std::string_view newOutlineFormats[] = {"vell", "markdown", "opml", "txt", "json"};

constexpr Option path{
    .name = "path",
    .value = "path",
    .help = "Optional filesystem path. When given, a new empty file is written there and opened.",
    .file = true};
constexpr Option format{
    .name = "--format",
    .shortName = "-f",
    .value = "format",
    .help =
        "File format: vell, markdown, opml, txt, or json. Defaults to vell for Untitled docs; "
        "for path mode, defaults from the path's extension (txt if unknown).",
    .choices = newOutlineFormats};

ipc::Answer created(const std::string& absolutePath, const std::string& kind, Console& console) {
  WaitingLine line(console, openingOfOutline);
  ipc::ReconnectingClient application(line.whenSlow());
  return outlines::createOutlineFile(application, absolutePath, kind, {.onPoll = line.whilePolling()});
}

/// Files are read as what their name says, but for those that begin as .vell files do, and those whose name
/// says nothing.
void warnOfOtherName(const std::string& absolutePath, const std::string& kind, Console& console) {
  if (kind == "vell") return;
  const std::string readAs = outlines::formatOfName(absolutePath).value_or(kind == "markdown" ? "txt" : kind);
  if (readAs == kind) return;
  console.say("warning: " + absolutePath + " was written as " + kind + " but is read as " + readAs +
              " because of its name. For " + kind + ", let the name end in ." + kind + "\n");
}

void createOutlineAt(const std::string& where, const Arguments& arguments, Console& console) {
  if (where.empty()) throw UsageError("The path is empty.");
  const std::string absolutePath = outlines::absolutize(where);
  const std::string kind = arguments.value(format).value_or(outlines::formatForPath(absolutePath));
  const ipc::Answer outline = created(absolutePath, kind, console);
  GlobalOptions(arguments, console).print(outline.result());
  warnOfOtherName(absolutePath, kind, console);
}

void createOutline(const Arguments& arguments, Console& console) {
  if (const auto where = arguments.value(path)) return createOutlineAt(*where, arguments, console);
  callAndPrint(ipc::OutlineNew{.format = arguments.value(format).value_or("vell")}, arguments, console);
}

const Command outline{
    .name = "outline",
    .abstract = "Create a new outline.",
    .discussion =
        "With no path: opens an Untitled outline in Vell (no file on disk). With a path: writes a new empty "
        "outline to that path and opens it. --format wins; else inferred from the path's extension; else "
        "txt.",
    .options = {&path, &format, &prettyOption},
    .examples = {{"create outline", "An untitled outline, saved later or never:"},
                 {"create outline ~/notes/groceries.md", "A new markdown file, opened:"}},
    .run = createOutline,
};

// Where new rows go.

constexpr Option parent{
    .name = "--parent", .value = "row-ref", .help = "Parent row ref (default: outline root)."};
constexpr Option position{.name = "--position",
                          .value = "position",
                          .help = "Position: start | end | <integer index>.",
                          .suggestions = positionNames};
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

constexpr Option textArgument{.name = "text", .value = "markdown", .help = "The same as --text."};

void createRow(const Arguments& arguments, Console& console) {
  const ipc::RowCreate creation{.markdown = namedOrPlain(arguments, text, textArgument).value_or(""),
                                .outline = arguments.value(outlineOption),
                                .place = place(arguments)};
  callAndPrint(creation, arguments, console);
}

const Command row{
    .name = "row",
    .options = {&textArgument, &outlineOption, &parent, &position, &before, &after, &text, &prettyOption},
    .examples = {{"create row 'Call **Ada**'", "A row at the end of the frontmost outline:"},
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
  const ipc::RowCreateMany creation{.markdown = console.read(*arguments.value(file)),
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

const Command createCommand{
    .name = "create", .abstract = "Create outline, row, rows.", .subcommands = {&outline, &row, &rows}};

}  // namespace vell::cli
