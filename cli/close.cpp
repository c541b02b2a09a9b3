#include "cli/commands.h"
#include "cli/options.h"
#include "ipc/methods.h"

namespace vell::cli {
namespace {

constexpr Option discard{
    .name = "--discard", .help = "Discard unsaved changes (default: false).", .takes = Takes::nothing};

void closeOutline(const Arguments& arguments, Console& console) {
  ipc::OutlineClose closing{.outline = arguments.value(outlineOption), .discard = std::nullopt};
  if (arguments.has(discard)) closing.discard = true;
  callAndPrint(closing, arguments, console);
}

const Command outline{.name = "outline",
                      .options = {&outlineOption, &discard, &prettyOption},
                      .examples = {{"close outline", "The frontmost outline, saved first:"}},
                      .run = closeOutline};

}  // namespace

const Command closeCommand{.name = "close", .abstract = "Close outline.", .subcommands = {&outline}};

}  // namespace vell::cli
