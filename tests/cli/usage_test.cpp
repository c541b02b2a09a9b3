#include <gtest/gtest.h>

#include <map>

#include "tests/cli/run.h"

namespace vell::cli {
namespace {

struct Case {
  const char* line;
  /// Without "Error: " in front.
  const char* message;
  const char* command;
};

/// What commands of every kind are used like.
const std::map<std::string_view, std::string_view> usages = {
    {"vell", "[--generate-completion-script <shell>]\n       vell <subcommand>\n"},
    {"vell get outline",
     "[--refs <row-refs>...] [--outline <outline-id>]\n"
     "           [--shape <shape>] [--output <output>] [--pretty]\n"
     "       vell get outline <subcommand>\n"},
    {"vell open outline", "<path> [--timeout <seconds>] [--pretty]\n"},
    {"vell update rows",
     "[<row-refs>...] [--outline <outline-id>]\n"
     "           [--text <markdown-or-json>] [--append <markdown-or-json>]\n"
     "           [--prepend <markdown-or-json>] [--type <type>]\n"
     "           [--attr <key=value>]... [--unset <key>]... [--persistent-id <id>]\n"
     "           [--pretty]\n"},
};

// A connection would fail with status 1: there is no application, and its absence would be the message.
TEST(UsageErrors, NameTheFaultAndTheWayOut) {
  const Case cases[] = {
      // Commands.
      {"gte", "Unknown command 'gte'. Did you mean 'get'?", "vell"},
      {"xyzzy", "Unknown command 'xyzzy'.", "vell"},
      {"''", "Unknown command ''.", "vell"},
      {"hlep", "Unknown command 'hlep'. Did you mean 'help'?", "vell"},
      {"get outlin", "Unknown command 'outlin'. Did you mean 'outline'?", "vell get"},
      {"help get editro", "Unknown command 'editro'. Did you mean 'editor'?", "vell get"},
      {"get rows --help", "Unknown command 'rows'.", "vell get"},
      // Options.
      {"get outlines --prety", "Unknown option '--prety'. Did you mean '--pretty'?", "vell get outlines"},
      {"get outline --outptu=json", "Unknown option '--outptu'. Did you mean '--output'?",
       "vell get outline"},
      {"get outlines -x", "Unknown option '-x'.", "vell get outlines"},
      {"move rows -5 --to 3", "Unknown option '-5'. Arguments that begin with '-' go behind '--'.",
       "vell move rows"},
      {"get outlines --pretty=no", "The option '--pretty' takes no value.", "vell get outlines"},
      {"get outline --outline", "Missing value for '--outline <outline-id>'.", "vell get outline"},
      {"get outline -o pdf",
       "The value 'pdf' is invalid for '-o, --output <output>'. Choose one of json, session, markdown, vell, "
       "opml or "
       "txt.",
       "vell get outline"},
      {"move --to rows 3", "Missing value for '--to <row-ref>'.", "vell move rows"},
      {"get outline --shape", "Missing value for '--shape <shape>'.", "vell get outline"},
      {"get outline -o json -o markdwon",
       "The value 'markdwon' is invalid for '-o, --output <output>'. Choose one of json, session, markdown, "
       "vell, opml or txt. Did you mean 'markdown'?",
       "vell get outline"},
      {"create row a --text b", "Give one text only, as an argument or with --text.", "vell create row"},
      {"create row a b", "Unexpected argument 'b'. Text with blanks goes in quotes.", "vell create row"},
      {"get outline --shape round",
       "The value 'round' is invalid for '--shape <shape>'. Choose one of tree or flat.", "vell get outline"},
      {"create rows", "Missing required '-f, --file <path>'.", "vell create rows"},
      // Arguments.
      {"get outlines 12", "Unexpected argument '12'.", "vell get outlines"},
      {"open outline", "Missing required '<path>'.", "vell open outline"},
      {"open outline a b", "Unexpected argument 'b'. Text with blanks goes in quotes.", "vell open outline"},
      {"get outline rows --refs 3", "--refs is not supported on `rows`; pass row refs positionally.",
       "vell get outline rows"},
      {"get outline rows 3 -- --refs", "--refs is not supported on `rows`; pass row refs positionally.",
       "vell get outline rows"},
      // What the commands ask for.
      {"move rows 12", "Specify --to, --before, or --after.", "vell move rows"},
      {"move rows 12 --position start", "Specify --to, --before, or --after.", "vell move rows"},
      {"update rows a b --persistent-id p", "--persistent-id requires exactly one row ref.",
       "vell update rows"},
      {"update rows --attr done", "Attribute must be key=value, got: 'done'", "vell update rows"},
      {"update editor --select-head 3", "--select-head requires --select.", "vell update editor"},
      {"evaluate commands", "At least one command id is required.", "vell evaluate commands"},
      {"open outline ''", "The path is empty.", "vell open outline"},
      {"open outline a --timeout 0", "--timeout takes a positive number of seconds, got: '0'",
       "vell open outline"},
      {"open outline a --timeout -1", "--timeout takes a positive number of seconds, got: '-1'",
       "vell open outline"},
      {"open outline a --timeout nan", "--timeout takes a positive number of seconds, got: 'nan'",
       "vell open outline"},
      {"open outline a --timeout 1e999", "--timeout takes a positive number of seconds, got: '1e999'",
       "vell open outline"},
      {"open outline a --timeout ''", "--timeout takes a positive number of seconds, got: ''",
       "vell open outline"},
      {"open outline a --timeout 2s", "--timeout takes a positive number of seconds, got: '2s'",
       "vell open outline"},
      {"observe outline /a --path /b", "Give one path only, as an argument or with --path.",
       "vell observe outline"},
      {"observe outline --path=/a --outline x -- /b", "Give one path only, as an argument or with --path.",
       "vell observe outline"},
      {"observe outline /a /b", "Unknown command '/b'.", "vell observe outline"},
      {"observe outline rows /a --path /b", "Give one path only, as an argument or with --path.",
       "vell observe outline rows"},
  };
  for (const auto& [line, message, command] : cases) {
    const Outcome outcome = run(line);
    EXPECT_EQ(outcome.status, 64) << line;
    EXPECT_EQ(outcome.out, "") << line;
    const std::string help = std::string("See '") + command + " --help' for more information.\n";
    const auto usage = usages.find(command);
    EXPECT_TRUE(outcome.err.starts_with(std::string("Error: ") + message + "\nUsage: " + command + " " +
                                        std::string(usage != usages.end() ? usage->second : "")) &&
                outcome.err.ends_with("\n" + help))
        << line << "\n"
        << outcome.err;
  }
}

}  // namespace
}  // namespace vell::cli
