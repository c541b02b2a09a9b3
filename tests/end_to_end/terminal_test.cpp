#include "tests/end_to_end/terminal.h"

#include <gtest/gtest.h>

#include <future>
#include <regex>

#include "tests/end_to_end/application.h"
#include "tests/support/fake_application.h"

namespace vell::tests {
namespace {

std::string withoutColours(const std::string& text) {
  return std::regex_replace(text, std::regex("\x1b\\[[0-9;]*m"), "");
}

std::vector<std::string> withProgram(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), VELL);
  return arguments;
}

/// Answers a read with every kind of value, other requests with an error that points at something.
FakeApplication::Reply answer(const std::string& request) {
  if (request.find("outline.get") != std::string::npos)
    return FakeApplication::error(-32000, R"(At column 3.\n\n  //@\n    ^\n\nHint: did you mean \"@a\"?)");
  return FakeApplication::result(R"([null,true,-1.5e3,{"a\"\\":"b\"{1","c":[{},"d"],"e":{"f":false}}])");
}

TEST(Terminal, ShowsInColoursWhatAPipeGets) {
  const TemporaryHome home;
  const FakeApplication application(answer);
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char* coloured;
  } cases[] = {
      {{"get", "outlines"},
       0,
       "\x1b[1;39m[\x1b[0;90mnull\x1b[1;39m,\x1b[0;39mtrue\x1b[1;39m,\x1b[0;39m-1.5e3\x1b[1;39m,"
       "{\x1b[34;1m\"a\\\"\\\\\"\x1b[1;39m:\x1b[0;32m\"b\\\"{1\"\x1b[1;39m,\x1b[34;1m\"c\"\x1b[1;39m:[{},"
       "\x1b[0;32m\"d\"\x1b[1;39m],\x1b[34;1m\"e\"\x1b[1;39m:{\x1b[34;1m\"f\"\x1b[1;39m:\x1b[0;39mfalse"
       "\x1b[1;39m}}]\x1b[0m\n"},
      {{"get", "outline", "//@"},
       1,
       "\x1b[1;31mError:\x1b[0m Vell error -32000: At column 3.\n\n  //@\n\x1b[1;32m    ^\x1b[0m\n\n"
       "\x1b[1;36mHint:\x1b[0m \x1b[36mdid you mean \"@a\"?\x1b[0m\n"},
      {{"gte"},
       64,
       "\x1b[1;31mError:\x1b[0m Unknown command 'gte'. \x1b[36mDid you mean 'get'?\x1b[0m\n"
       "Usage: vell [--generate-completion-script <shell>]\n       vell <subcommand>\n"
       "See 'vell --help' for more information.\n"},
  };
  const struct {
    std::vector<std::string> environment;
    bool coloured;
  } places[] = {
      {{"TERM=xterm", "NO_COLOR="}, true},
      {{"TERM=xterm", "NO_COLOR=1"}, false},
      {{"TERM=dumb", "NO_COLOR="}, false},
      {{"TERM=", "NO_COLOR="}, false},
  };
  for (const auto& [arguments, status, coloured] : cases) {
    const Ended piped = vell(arguments);
    EXPECT_EQ(piped.output + piped.error, withoutColours(coloured));
    EXPECT_EQ(piped.status, status);
    for (const auto& [environment, isColoured] : places) {
      const std::string shown = Terminal(withProgram(arguments), environment).wait().output;
      EXPECT_EQ(shown, isColoured ? coloured : withoutColours(coloured)) << environment[0] << environment[1];
    }
  }
}

TEST(Terminal, SaysWhatIsWaitedForAndWipesIt) {
  const TemporaryHome home;
  std::promise<void> seen;
  const FakeApplication application([answered = seen.get_future().share()](const std::string&) {
    answered.wait();
    return FakeApplication::Reply{
        "{\"id\":1,\"result\":1}\n"
        R"({"method":"outline.observe","params":{"kind":"subscription.closed"}})"
        "\n"};
  });
  const std::vector<std::string> plain = {"TERM=xterm", "NO_COLOR=1"};
  Terminal reading(withProgram({"get", "outlines"}), plain);
  Terminal opening(withProgram({"create", "outline", home / "a.md"}), plain);
  Terminal piped({"sh", "-c", "read line | " VELL " create rows -f -"}, plain);
  Terminal observing(withProgram({"observe", "outline"}), plain);
  Terminal dumb(withProgram({"get", "editors"}), {"TERM=dumb"});
  reading.shown("answer...");
  observing.shown("answer...");
  opening.shown("outline...");
  piped.shown("input...");
  piped.type("\n");
  piped.shown("answer...");
  seen.set_value();
  EXPECT_EQ(reading.wait().output, "Waiting for Vell to answer...\r\x1b[K1\n");
  EXPECT_EQ(opening.wait().output,
            "Waiting for Vell to open the outline...\r\x1b[K"
            "Error: outline.newContent did not return a string payload\n");
  EXPECT_EQ(observing.wait().output,
            "Waiting for Vell to answer...\r\x1b[K{\"kind\":\"subscription.closed\"}\n");
  EXPECT_EQ(piped.wait().output,
            "Waiting for standard input...\n\r\x1b[KWaiting for Vell to answer...\r\x1b[K1\n");
  EXPECT_EQ(dumb.wait().output, "1\n");
}

TEST(Terminal, TellsWhoTypesHowToEnd) {
  const TemporaryHome home;
  Terminal serving(withProgram({"mcp"}), {"TERM=dumb"});
  serving.shown("(Ctrl-D).\n");
  serving.type("\x04");
  const Ended served = serving.wait();
  EXPECT_EQ(served.output, "Serving an MCP host on standard input until end of file (Ctrl-D).\n");
  EXPECT_EQ(served.status, 0);
  const FakeApplication application(FakeApplication::result("1"));
  Terminal typing(withProgram({"create", "rows", "-f", "-"}), {"TERM=dumb"});
  typing.shown("(Ctrl-D).\n");
  typing.type("row\n\x04");
  EXPECT_EQ(typing.wait().output, "Reading standard input until end of file (Ctrl-D).\nrow\n1\n");
  EXPECT_NE(application.requests().at(0).find(R"("markdown":"row\n")"), std::string::npos);
}

}  // namespace
}  // namespace vell::tests
