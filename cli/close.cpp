#include "cli/commands.h"
#include "cli/global_options.h"
#include "cli/shared_options.h"
#include "ipc/methods/outline.h"

namespace vell::cli {
namespace {

constexpr Option discard{
    .name = "--discard", .help = "Discard unsaved changes (default: false).", .takes = Takes::nothing};

void closeOutline(const Arguments& arguments, Console& console) {
  ipc::OutlineClose closing{.outline = arguments.value(outlineOption), .discard = std::nullopt};
  if (arguments.has(discard)) closing.discard = true;
  callAndPrint(closing, arguments, console);
}

constexpr const Option* options[] = {&outlineOption, &discard, &prettyOption};
constexpr Example examples[] = {{"close outline", "The frontmost outline, saved first:"}};
constexpr Command outline{.name = "outline", .options = options, .examples = examples, .run = closeOutline};

constexpr const Command* subcommands[] = {&outline};

}  // namespace

const Command closeCommand{.name = "close", .abstract = "Close outline.", .subcommands = subcommands};

}  // namespace vell::cli
