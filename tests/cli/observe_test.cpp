#include <gtest/gtest.h>

#include "tests/cli/run.h"
#include "tests/support/fake_application.h"
#include "tests/support/temporary_directory.h"

namespace vell::cli {
namespace {

using tests::FakeApplication;

struct Case {
  const char* line;
  const char* params;
  /// The data of the notifications.
  std::vector<const char*> data;
  const char* out;
  const char* err;
};

std::string notification(const std::string& kind, const std::string& data) {
  return R"({"jsonrpc":"2.0","method":"outline.changed","params":{"subscriptionId":"s","outline":"o","kind":")" +
         kind + R"(","data":)" + data + "}}\n";
}

TEST(Observe, PrintsEveryNotification) {
  const Case cases[] = {
      {"observe outline",
       R"({"format":"session","path":"//*","rows":false,"shape":"tree"})",
       {R"({"b":1,"a":2})", "[]"},
       "{\"data\":{\"a\":2,\"b\":1},\"kind\":\"snapshot\",\"outline\":\"o\",\"subscriptionId\":\"s\"}\n"
       "{\"data\":[],\"kind\":\"snapshot\",\"outline\":\"o\",\"subscriptionId\":\"s\"}\n"
       "{\"data\":{\"reason\":\"outlineClosed\"},\"kind\":\"subscription.closed\",\"outline\":\"o\","
       "\"subscriptionId\":\"s\"}\n",
       ""},
      {"observe outline rows //task --pretty --shape flat --outline o",
       R"({"format":"session","outline":"o","path":"//task","rows":true,"shape":"flat"})",
       {},
       "{\"data\":{\"reason\":\"outlineClosed\"},\"kind\":\"subscription.closed\",\"outline\":\"o\","
       "\"subscriptionId\":\"s\"}\n",
       ""},
      {"observe outline /a -o markdown --pretty",
       R"({"format":"markdown","path":"/a","rows":false,"shape":"tree"})",
       {R"("# A\n- b")", R"("# B")"},
       "# A\n- b\n---\n# B\n",
       "warning: --pretty has no effect on markdown output (JSON formats only)\n"},
      {"observe outline --path /a --path /b -o txt -o json",
       R"({"format":"json","path":"/b","rows":false,"shape":"tree"})",
       {"[1]"},
       "[\n  1\n]\n",
       ""},
      {"observe outline -o json rows --path rows",
       R"({"format":"json","path":"rows","rows":true,"shape":"tree"})",
       {"[1]"},
       "[\n  1\n]\n",
       ""},
  };
  tests::TemporaryHome home;
  for (const auto& [line, params, data, out, err] : cases) {
    std::string answer = "{\"id\":1,\"result\":{}}\n";
    for (const char* snapshot : data) answer += notification("snapshot", snapshot);
    answer += notification("subscription.closed", R"({"reason":"outlineClosed"})");
    FakeApplication application(FakeApplication::Reply{answer});
    const Outcome outcome = run(line);
    EXPECT_EQ(outcome.status, 0) << line;
    EXPECT_EQ(outcome.out, out) << line;
    EXPECT_EQ(outcome.err, err) << line;
    EXPECT_EQ(application.requests().at(0),
              R"({"id":1,"jsonrpc":"2.0","method":"outline.observe","params":)" + std::string(params) + "}")
        << line;
  }
}

TEST(Observe, FailsAsTheStreamDoes) {
  tests::TemporaryHome home;
  const std::string first = notification("snapshot", R"("a")");
  const std::pair<FakeApplication::Reply, const char*> cases[] = {
      {FakeApplication::error(-32602, "The path is scalar."),
       "Error: Vell error -32602: The path is scalar.\n"},
      {{first, true}, "Error: Vell closed the connection without sending a response.\n"},
  };
  for (const auto& [reply, err] : cases) {
    FakeApplication application(reply);
    const Outcome outcome = run("observe outline 'count(//*)' -o txt");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, err);
    EXPECT_EQ(outcome.out, reply.close ? "a\n" : "");
  }
}

}  // namespace
}  // namespace vell::cli
