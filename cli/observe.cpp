#include <algorithm>

#include "cli/commands.h"
#include "cli/entry.h"
#include "cli/outline_read.h"
#include "ipc/methods.h"

namespace vell::cli {
namespace {

constexpr Option pathOption{.name = "--path",
                            .value = "path",
                            .help =
                                "Outline path expression to observe. Default: `//*` (every row). Must return "
                                "a row-set; scalar expressions "
                                "are rejected."};
constexpr Option pathArgument{.name = "path", .value = "path", .help = "The same as --path."};

/// A plain path has been moved behind a --path of its own before the command line is parsed.
std::string refusePlainAndNamed(const ArgumentList& typed) {
  const auto isNamed = [](const std::string& word) {
    return word == pathOption.name || word.starts_with(std::string(pathOption.name) + "=");
  };
  const ArgumentList moved = Vell::preprocessOutlineRefs(typed);
  const auto named = std::count_if(typed.begin(), typed.end(), isNamed);
  return named > 0 && std::count_if(moved.begin(), moved.end(), isNamed) > named
             ? givenTwice(pathOption, pathArgument)
             : "";
}

/// The options of both commands.
struct OutlineObserveOptions {
  OutlineObserveOptions(const Arguments& arguments, Console& console)
      : read(arguments, console), path(namedOrPlain(arguments, pathOption, pathArgument).value_or("//*")) {}

  OutlineReadCommonOptions read;
  std::string path;
};

/// Prints what a subscription brings: each notification as a line of JSON, or the snapshots in them.
class Printer {
 public:
  Printer(OutputFormat format, Console& console) : format_(format), console_(console) {}

  /// Everything is handed to the system before the next notification is waited for.
  void print(const json::Node& notification) {
    if (format_ == OutputFormat::session) {
      console_.print(notification, json::Layout::compact);
    } else if (!closes(notification)) {
      printSnapshot(notification);
    }
    console_.out.flush();
  }

 private:
  static bool closes(const json::Node& notification) {
    const auto kind = notification.find("kind");
    return kind && kind->string() == "subscription.closed";
  }

  void printSnapshot(const json::Node& notification) {
    const auto data = notification.find("data");
    if (!data) return;
    if (!first_) console_.out.write("---\n");
    first_ = false;
    writeEncoded(*data, console_);
  }

  OutputFormat format_;
  Console& console_;
  bool first_ = true;
};

void streamOutline(const OutlineObserveOptions& options, bool rowsOnly, Console& console) {
  const OutputFormat format = options.read.output;
  if (isText(format)) options.read.global.warnPrettyIgnored(name(format) + " output");
  const ipc::OutlineObserve observation{.path = options.path,
                                        .format = name(format),
                                        .shape = name(options.read.shape),
                                        .rows = rowsOnly,
                                        .outline = options.read.outline};
  Printer printer(format, console);
  WaitingLine line(console, vellToAnswer);
  ipc::VellClient client;
  client.whenSlow(line.whenSlow());
  const ReaderWatch watch(console.out);
  sendNaming(observation, client, [&](const ipc::OutlineObserve& each) {
    client.subscribe(each, [&](const json::Node& notification) {
      line.wipe();
      printer.print(notification);
    });
  });
}

constexpr std::string_view rowsStream = R"(
STREAM
  Snapshots have the kind "rows"; their data is what `vell get outline rows`
  prints: an array of rows, or a string in the text formats.

    {"data":[{"id":12,...}],"kind":"rows","outline":"6FJq2aTk",
     "subscriptionId":"..."}
)";

const Command rows{
    .name = "rows",
    .abstract = "Stream rows (only) matching the given outline path.",
    .options = {&pathArgument, &pathOption, &outlineOption, &shapeOption, &outputOption, &prettyOption},
    .examples = {{"observe outline rows //task --shape flat", "Every task, again whenever one changes:"}},
    .appendix = rowsStream,
    .run =
        [](const Arguments& arguments, Console& console) {
          streamOutline({arguments, console}, true, console);
        },
};

constexpr std::string_view outlineStream = R"(
STREAM
  Snapshots have the kind "outline"; their data is what `vell get outline`
  prints: the outline with its matching rows, or a string in the text formats.

    {"data":{"persistentId":"6FJq2aTk","rows":[...]},"kind":"outline",
     "outline":"6FJq2aTk","subscriptionId":"..."}
)";

const Command outline{
    .name = "outline",
    .abstract = "Stream outline with rows matching the given path.",
    .discussion =
        "Initial snapshot + debounced re-evaluation when outline changes. Changes fire only when the matched "
        "rows/shape actually changes. See `vell observe --help` for the wrapper shape and stream lifecycle.",
    .options = {&pathOption, &outlineOption, &shapeOption, &outputOption, &prettyOption},
    .subcommands = {&rows},
    .examples = {{"observe outline", "The frontmost outline, again whenever it changes:"},
                 {"observe outline //heading -o markdown",
                  "The headings as markdown (the same as with --path):"}},
    .appendix = outlineStream,
    .plainArguments = &pathOption,
    .check = refusePlainAndNamed,
    .run =
        [](const Arguments& arguments, Console& console) {
          streamOutline({arguments, console}, false, console);
        },
};

}  // namespace

const Command observeCommand{
    .name = "observe",
    .abstract = "Observe outline changes.",
    .discussion =
        "NDJSON stream when using default `session` output. Each line is `{subscriptionId, outline, kind, "
        "data}`; "
        "per-subcommand `kind` and `data` shapes are listed in their own help. Non-`session` output prints "
        "each "
        "snapshot separated by `---`.\n\n"
        "A stream may end with a final `{kind: \"subscription.closed\", data: {reason}}` notification. "
        "Reasons: "
        "`outlineClosed` (the observed outline was closed), `appQuitting` (Vell is terminating). Ctrl-C / "
        "SIGTERM end "
        "the stream with a bare EOF — no terminator is emitted.",
    .subcommands = {&outline},
};

}  // namespace vell::cli
