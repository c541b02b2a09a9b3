#include <gtest/gtest.h>

#include "platform/process.h"
#include "tests/cli/run.h"
#include "tests/support/fake_application.h"
#include "tests/support/temporary_directory.h"

namespace vell::cli {
namespace {

using tests::FakeApplication;

struct Case {
  const char* line;
  const char* result;
  const char* out;
  const char* err;
};

TEST(Printing, OfResults) {
  const Case cases[] = {
      {"get outlines", R"([ {"b":1.0, "a":"x/y"} ])", "[{\"a\":\"x/y\",\"b\":1.0}]\n", ""},
      {"get outlines --pretty", R"([{"b":1,"a":null}])", "[\n  {\n    \"a\": null,\n    \"b\": 1\n  }\n]\n",
       ""},
      {"get editors", "null", "null\n", ""},
      {"get editors", R"("text")", "\"text\"\n", ""},
      {"get editors --pretty", R"("text")", "\"text\"\n",
       "warning: --pretty has no effect on text-format output (JSON formats only)\n"},
      {"get outline", R"({"b":"ä","a":[]})", "{\n  \"a\": [],\n  \"b\": \"ä\"\n}\n", ""},
      {"get outline --pretty -o json", "[1]", "[\n  1\n]\n", ""},
      {"get outline -o markdown", R"("# A\n- b\u00e4")", "# A\n- bä\n", ""},
      {"get outline rows -o txt --pretty", R"("a\n")", "a\n\n",
       "warning: --pretty has no effect on txt output (JSON formats only)\n"},
      // What came of it is also said on standard error.
      {"get outline rows //x 12", "[]", "[]\n", "warning: no row matches //x, 12\n"},
      {"get outline rows //x -o txt", R"("")", "\n", "warning: no row matches //x\n"},
      {"get outline rows 12 //tasks/*", "[]", "[]\n",
       "warning: no row matches 12, //tasks/* (\"tasks\" is no type test but searches for text; did you mean "
       "\"task\"?)\n"},
      {"get outline rows (/heading/quote[0])", "[]", "[]\n",
       "warning: no row matches (/heading/quote[0]) (\"quote\" is no type test but searches for text; did "
       "you "
       "mean \"blockquote\"?)\n"},
      {"get outline rows //\"tasks\" //milk", "[]", "[]\n", "warning: no row matches //\"tasks\", //milk\n"},
      {"get outline rows //@due=today", "[]", "[]\n",
       "warning: no row matches //@due=today (\"today\" is a word here; write today() for the date, "
       "\"today\" for "
       "the text)\n"},
      {"get outline //x", R"({"rows":[]})", "{\n  \"rows\": []\n}\n", "warning: no row matches //x\n"},
      {"get outline", R"({"rows":[]})", "{\n  \"rows\": []\n}\n", ""},
      {"update rows //x --type task", "[]", "[]\n", "warning: no row matches //x\n"},
      {"move rows //x --to 3", "[]", "[]\n", "warning: no row matches //x\n"},
      {"delete rows //x", R"({"deleted":0})", "{\"deleted\":0}\n", "warning: no row matches //x\n"},
      {"delete rows //x", R"({"deleted":2})", "{\"deleted\":2}\n", ""},
      {"update rows 1 2 --type tsk",
       R"([{"fieldErrors":{"type":"No."},"row":1},{"fieldErrors":{"type":"No."}}])",
       "[{\"fieldErrors\":{\"type\":\"No.\"},\"row\":1},{\"fieldErrors\":{\"type\":\"No.\"}}]\n",
       "warning: type: No.\n"},
      {"create row --pretty", R"({"id":3})", "{\n  \"id\": 3\n}\n", ""},
  };
  tests::TemporaryHome home;
  for (const auto& [line, result, out, err] : cases) {
    FakeApplication application(FakeApplication::result(result));
    const Outcome outcome = run(line);
    EXPECT_EQ(outcome.status, 0) << line;
    EXPECT_EQ(outcome.out, out) << line;
    EXPECT_EQ(outcome.err, err) << line;
  }
}

TEST(Printing, OfApplicationErrors) {
  tests::TemporaryHome home;
  FakeApplication application(FakeApplication::error(-32602, "No such row: 99"));
  const Outcome outcome = run("get outline 99 -o markdown --pretty");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "");
  EXPECT_EQ(outcome.err,
            "warning: --pretty has no effect on markdown output (JSON formats only)\n"
            "Error: Vell error -32602: No such row: 99\n");
}

TEST(Printing, OfAnAbsentApplication) {
  tests::TemporaryHome home;
  const Outcome outcome = run("get outlines");
  EXPECT_EQ(outcome.status, 1);
  const std::string start = platform::startCommand();
  const std::string hint = start.empty() ? "" : "hint: start it with: " + start + "\n";
  EXPECT_EQ(outcome.err, "Error: Vell.app must be running for CLI/MCP access.\nError: (socket " +
                             platform::applicationSocketPath() + ": No such file or directory)\n" + hint);
}

TEST(Printing, OfUnreadableInput) {
  tests::TemporaryHome home;
  const std::string missing = home / "none.md", binary = home.write("binary", "\xff\xfe");
  const std::pair<std::string, std::string> cases[] = {
      {"create rows -f " + missing, "Error: Cannot read " + missing + ": No such file or directory\n"},
      {"create rows -f " + home.path(), "Error: Cannot read " + home.path() + ": Is a directory\n"},
      {"create rows -f " + binary, "Error: Input is not valid UTF-8.\n"},
      {"evaluate script -f " + binary, "Error: Input is not valid UTF-8.\n"},
  };
  for (const auto& [line, err] : cases) {
    const Outcome outcome = run(line);
    EXPECT_EQ(outcome.status, 1) << line;
    EXPECT_EQ(outcome.err, err) << line;
  }
}

}  // namespace
}  // namespace vell::cli
