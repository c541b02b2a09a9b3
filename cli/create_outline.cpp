#include "cli/create_outline.h"

#include "cli/global_options.h"
#include "ipc/methods.h"
#include "ipc/vell_client.h"
#include "outlines/creation.h"
#include "outlines/location.h"

namespace vell::cli {
namespace {

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

void createOutlineAt(const std::string& where, const Arguments& arguments, Console& console) {
  if (where.empty()) throw UsageError("The path is empty.");
  const std::string absolutePath = outlines::absolutize(where);
  const std::string kind = arguments.value(format).value_or(outlines::formatForPath(absolutePath));
  ipc::ReconnectingClient application;
  const ipc::Answer outline = outlines::createOutlineFile(application, absolutePath, kind);
  GlobalOptions(arguments, console).print(outline.result());
}

void createOutline(const Arguments& arguments, Console& console) {
  if (const auto where = arguments.value(path)) return createOutlineAt(*where, arguments, console);
  callAndPrint(ipc::OutlineNew{.format = arguments.value(format).value_or("vell")}, arguments, console);
}

}  // namespace

const Command createOutlineCommand{
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

}  // namespace vell::cli
