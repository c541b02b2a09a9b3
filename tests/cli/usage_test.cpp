#include <gtest/gtest.h>

#include "tests/cli/run.h"

namespace vell::cli {
namespace {

struct Case {
  const char* line;
  /// Without "Error: " in front.
  const char* message;
  const char* usage;
  const char* command;
};

constexpr const char* rootUsage =
    "Usage: vell [--generate-completion-script <shell>]\n       vell <subcommand>\n";
constexpr const char* getUsage = "Usage: vell get <subcommand>\n";
constexpr const char* listUsage = "Usage: vell get outlines [--pretty]\n";
constexpr const char* outlineUsage =
    "Usage: vell get outline [--refs <row-refs>...] [--outline <outline-id>]\n"
    "           [--shape <shape>] [--output <output>] [--pretty]\n"
    "       vell get outline <subcommand>\n";
constexpr const char* rowsUsage =
    "Usage: vell get outline rows [<row-refs>...] [--outline <outline-id>]\n"
    "           [--shape <shape>] [--output <output>] [--pretty]\n";
constexpr const char* openUsage = "Usage: vell open outline <path> [--timeout <seconds>] [--pretty]\n";
constexpr const char* moveUsage =
    "Usage: vell move rows [<row-refs>...] [--to <row-ref>] [--position <position>]\n"
    "           [--before <row-ref>] [--after <row-ref>] [--outline <outline-id>]\n"
    "           [--pretty]\n";
constexpr const char* updateUsage =
    "Usage: vell update rows [<row-refs>...] [--outline <outline-id>]\n"
    "           [--text <markdown-or-json>] [--append <markdown-or-json>]\n"
    "           [--prepend <markdown-or-json>] [--type <type>]\n"
    "           [--attr <key=value>]... [--unset <key>]... [--persistent-id <id>]\n"
    "           [--pretty]\n";
constexpr const char* editorUsage =
    "Usage: vell update editor [--focus <row-ref>] [--select <row-ref>]\n"
    "           [--select-head <row-ref>] [--expand <row-refs>...]\n"
    "           [--collapse <row-refs>...] [--outline <outline-id>] [--pretty]\n";
constexpr const char* createUsage =
    "Usage: vell create rows --file <path> [--outline <outline-id>]\n"
    "           [--parent <row-ref>] [--position <position>] [--before <row-ref>]\n"
    "           [--after <row-ref>] [--pretty]\n";
constexpr const char* performUsage =
    "Usage: vell evaluate commands <ids>... [--editor <editor-id>] [--pretty]\n";
constexpr const char* observeUsage =
    "Usage: vell observe outline [--path <path>] [--outline <outline-id>]\n"
    "           [--shape <shape>] [--output <output>] [--pretty]\n"
    "       vell observe outline <subcommand>\n";
constexpr const char* observeRowsUsage =
    "Usage: vell observe outline rows [<path>] [--path <path>]\n"
    "           [--outline <outline-id>] [--shape <shape>] [--output <output>]\n"
    "           [--pretty]\n";

// A connection would fail with status 1: there is no application, and its absence would be the message.
TEST(UsageErrors, NameTheFaultAndTheWayOut) {
  const Case cases[] = {
      // Commands.
      {"gte", "Unknown command 'gte'. Did you mean 'get'?", rootUsage, "vell"},
      {"xyzzy", "Unknown command 'xyzzy'.", rootUsage, "vell"},
      {"''", "Unknown command ''.", rootUsage, "vell"},
      {"get outlin", "Unknown command 'outlin'. Did you mean 'outline'?", getUsage, "vell get"},
      {"help get editro", "Unknown command 'editro'. Did you mean 'editor'?", getUsage, "vell get"},
      {"get rows --help", "Unknown command 'rows'.", getUsage, "vell get"},
      // Options.
      {"get outlines --prety", "Unknown option '--prety'. Did you mean '--pretty'?", listUsage,
       "vell get outlines"},
      {"get outline --outptu=json", "Unknown option '--outptu'. Did you mean '--output'?", outlineUsage,
       "vell get outline"},
      {"get outlines -x", "Unknown option '-x'.", listUsage, "vell get outlines"},
      {"move rows -5 --to 3", "Unknown option '-5'. Arguments that begin with '-' go behind '--'.", moveUsage,
       "vell move rows"},
      {"get outlines --pretty=no", "The option '--pretty' takes no value.", listUsage, "vell get outlines"},
      {"get outline --outline", "Missing value for '--outline <outline-id>'.", outlineUsage,
       "vell get outline"},
      {"get outline -o pdf",
       "The value 'pdf' is invalid for '-o, --output <output>'. Choose one of json, session, markdown, vell, "
       "opml or "
       "txt.",
       outlineUsage, "vell get outline"},
      {"get outline --shape", "Missing value for '--shape <shape>'.", outlineUsage, "vell get outline"},
      {"get outline --shape round",
       "The value 'round' is invalid for '--shape <shape>'. Choose one of tree or flat.", outlineUsage,
       "vell get outline"},
      {"move rows --to 1 --to 2", "The option '--to' can be given only once.", moveUsage, "vell move rows"},
      {"create rows", "Missing required '-f, --file <path>'.", createUsage, "vell create rows"},
      // Arguments.
      {"get outlines 12", "Unexpected argument '12'.", listUsage, "vell get outlines"},
      {"open outline", "Missing required '<path>'.", openUsage, "vell open outline"},
      {"open outline a b", "Unexpected argument 'b'.", openUsage, "vell open outline"},
      {"get outline rows --refs 3", "--refs is not supported on `rows`; pass row refs positionally.",
       rowsUsage, "vell get outline rows"},
      {"get outline rows 3 -- --refs", "--refs is not supported on `rows`; pass row refs positionally.",
       rowsUsage, "vell get outline rows"},
      // What the commands ask for.
      {"move rows 12", "Specify --to, --before, or --after.", moveUsage, "vell move rows"},
      {"move rows 12 --position start", "Specify --to, --before, or --after.", moveUsage, "vell move rows"},
      {"update rows a b --persistent-id p", "--persistent-id requires exactly one row ref.", updateUsage,
       "vell update rows"},
      {"update rows --attr done", "Attribute must be key=value, got: 'done'", updateUsage,
       "vell update rows"},
      {"update editor --select-head 3", "--select-head requires --select.", editorUsage,
       "vell update editor"},
      {"evaluate commands", "At least one command id is required.", performUsage, "vell evaluate commands"},
      {"open outline ''", "The path is empty.", openUsage, "vell open outline"},
      {"open outline a --timeout 0", "--timeout takes a positive number of seconds, got: '0'", openUsage,
       "vell open outline"},
      {"open outline a --timeout -1", "--timeout takes a positive number of seconds, got: '-1'", openUsage,
       "vell open outline"},
      {"open outline a --timeout nan", "--timeout takes a positive number of seconds, got: 'nan'", openUsage,
       "vell open outline"},
      {"open outline a --timeout 1e999", "--timeout takes a positive number of seconds, got: '1e999'",
       openUsage, "vell open outline"},
      {"open outline a --timeout ''", "--timeout takes a positive number of seconds, got: ''", openUsage,
       "vell open outline"},
      {"open outline a --timeout 2s", "--timeout takes a positive number of seconds, got: '2s'", openUsage,
       "vell open outline"},
      {"observe outline /a --path /b", "The option '--path' can be given only once.", observeUsage,
       "vell observe outline"},
      {"observe outline /a /b", "Unknown command '/b'.", observeUsage, "vell observe outline"},
      {"observe outline rows /a --path /b", "Give one path only, as an argument or with --path.",
       observeRowsUsage, "vell observe outline rows"},
  };
  for (const auto& [line, message, usage, command] : cases) {
    const Outcome outcome = run(line);
    EXPECT_EQ(outcome.status, 64) << line;
    EXPECT_EQ(outcome.out, "") << line;
    EXPECT_EQ(outcome.err, std::string("Error: ") + message + "\n" + usage + "See '" + command +
                               " --help' for more information.\n")
        << line;
  }
}

}  // namespace
}  // namespace vell::cli
