#include "ipc/vell_client.h"

#include <gmock/gmock.h>

#include "ipc/methods.h"
#include "json/error.h"
#include "platform/socket.h"
#include "tests/support/fake_application.h"
#include "tests/support/temporary_directory.h"

namespace vell::ipc {
namespace {

using tests::FakeApplication;
using Reply = FakeApplication::Reply;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

/// What one call gives: the result, or the error's text.
std::string outcome(Application& application) {
  try {
    return application.request("m", "").bytes();
  } catch (const std::exception& error) {
    return error.what();
  }
}

TEST(Methods, NameTheArgumentThatIsNotUtf8) {
  const std::string bad = "a\xFF";
  const std::pair<std::function<std::string()>, std::string> cases[] = {
      {[&] {
         return RowDelete{.rows = {"1", bad}}.toJson();
       },
       "\"rows[1]\""},
      {[&] { return OutlineFindByPath{.path = bad}.toJson(); }, "\"path\""},
      {[&] {
         return RowUpdate{.rows = {}, .attributes = {{{"due", bad}}}}.toJson();
       },
       "\"attributes.due\""},
      {[&] {
         return RowUpdate{.rows = {}, .attributes = {{{bad, "x"}}}}.toJson();
       },
       "\"attributes.a\xEF\xBF\xBD\""},
  };
  for (const auto& [build, name] : cases) {
    try {
      ADD_FAILURE() << name << " was taken: " << build();
    } catch (const ParamsError& error) {
      EXPECT_EQ(error.what(), "The argument " + name + " is not valid UTF-8.");
    }
  }
}

TEST(VellClient, FindsTheAnswerAmongWhatArrives) {
  const std::string answer = R"({"id":1,"result":{"b":[1.0,1e400],"a":"/"}})";
  const std::string bytes = R"({"a":"/","b":[1.0,1e400]})";
  const std::string closed = "Vell closed the connection without sending a response.";
  const std::tuple<const char*, Reply, std::string> cases[] = {
      {"plain", {answer + "\n"}, bytes},
      {"CR LF", {answer + "\r\n"}, bytes},
      {"behind blank lines, an array and a notification, in one write",
       {"\n \t\n[1]\n{\"method\":\"x\",\"params\":1}\n" + answer + "\n{\"id\":2,\"result\":2}\n"},
       bytes},
      {"without its line feed", {answer, true}, bytes},
      {"another id", Reply::line(R"({"id":"x","result":null})"), "null"},
      {"without result", Reply::line(R"({"id":5})"), "null"},
      {"an error that is no object", Reply::line(R"({"id":5,"error":"no","result":[]})"), "[]"},
      {"error", Reply::line(R"({"id":5,"error":{"code":-32000,"message":"No \u00e9ditor"},"result":1})"),
       "Vell error -32000: No \xC3\xA9"
       "ditor"},
      {"error without id", Reply::line(R"({"error":{"code":7,"message":"m"}})"), "Vell error 7: m"},
      {"bare error", Reply::line(R"({"id":5,"error":{}})"), "Vell error -1: Unknown error"},
      {"error of other types", Reply::line(R"({"id":5,"error":{"code":"7","message":7}})"),
       "Vell error -1: Unknown error"},
      {"error with a fraction", Reply::line(R"({"id":5,"error":{"code":7.5,"message":"m"}})"),
       "Vell error -1: m"},
      {"closed", {"", true}, closed},
      {"closed behind a notification", Reply::line(R"({"method":"x"})", true), closed},
  };
  const tests::TemporaryHome home;
  for (const auto& [name, reply, expected] : cases) {
    const FakeApplication fake(reply);
    VellClient client;
    EXPECT_EQ(outcome(client), expected) << name;
  }
}

TEST(VellClient, NamesThePlaceWhereALineIsNotJson) {
  const std::pair<std::string, std::size_t> cases[] = {
      {"{\"id\":1,\"result\":}\n", 17}, {"{\"id\":1,\"result\":\"\xFF\"}\n", 18}, {"5\n", 0}};
  const tests::TemporaryHome home;
  for (const auto& [text, offset] : cases) {
    const FakeApplication fake(Reply{text});
    VellClient client;
    try {
      ADD_FAILURE() << text << " gave " << client.call("m");
    } catch (const json::ParseError& error) {
      EXPECT_EQ(error.offset(), offset) << text;
      EXPECT_THAT(error.what(), HasSubstr(std::to_string(offset)));
    }
  }
}

TEST(VellClient, TakesAnAnswerOfManyReads) {
  const std::string text(3'000'000, 'x');
  const tests::TemporaryHome home;
  const FakeApplication fake(FakeApplication::result('"' + text + '"'));
  EXPECT_EQ(VellClient().request("m", "").result().string(), text);
}

TEST(VellClient, SaysWhyItCannotConnect) {
  const tests::TemporaryHome home;
  const std::string path = VellClient::resolveSocketPath();
  EXPECT_EQ(path, home / "Library/Containers/app.vell.Vell/Data/cli.sock");
  const auto failure = [&](const std::string& cause) {
    return "Vell.app must be running for CLI/MCP access.\nError: (socket " + path + ": " + cause + ")";
  };
  ReconnectingClient client;
  EXPECT_EQ(outcome(client), failure("No such file or directory"));
  const sockaddr_un address = *platform::socketAddress(path);
  ASSERT_EQ(
      bind(platform::openStreamSocket().get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
      0);
  EXPECT_EQ(outcome(client), failure("Connection refused"));
  EXPECT_THAT(ClientError::connect(EPERM, path).what(),
              AllOf(StartsWith(failure("Operation not permitted") + "\n"), HasSubstr("Full Disk Access")));
}

TEST(VellClient, TakesPathsOfUpTo103Bytes) {
  const tests::TemporaryDirectory directory;
  const std::string longest = directory / std::string(103 - directory.path().size() - 1, 's');
  const FakeApplication fake(FakeApplication::result("1"), longest);
  EXPECT_EQ(VellClient(longest).call("m"), "1");
  try {
    VellClient client(longest + "s");
    ADD_FAILURE() << "a path too long was taken";
  } catch (const ClientError& error) {
    EXPECT_EQ(error.what(), "Socket path exceeds AF_UNIX limit: " + longest + "s");
  }
}

TEST(VellClient, AWriteToAnApplicationThatWentAwayIsAnErrorAndNoSignal) {
  const tests::TemporaryHome home;
  auto fake = std::make_unique<FakeApplication>(FakeApplication::result("1"));
  VellClient client;
  client.call("m");
  fake.reset();
  EXPECT_EQ(outcome(client), "Write failed: Broken pipe");
}

TEST(ReconnectingClient, ConnectsAnewAfterATransportFailureOnly) {
  const Reply replies[] = {FakeApplication::result("1"),
                           FakeApplication::error(3, "no"),
                           FakeApplication::result("2"),
                           {"", true},
                           FakeApplication::result("3")};
  std::size_t next = 0;
  const tests::TemporaryHome home;
  ReconnectingClient client;
  EXPECT_THAT(outcome(client), HasSubstr("must be running"));
  const FakeApplication fake([&](const std::string&) { return replies[next++]; });
  EXPECT_EQ(outcome(client), "1");
  EXPECT_EQ(outcome(client), "Vell error 3: no");
  EXPECT_EQ(outcome(client), "2");
  EXPECT_EQ(outcome(client), "Vell closed the connection without sending a response.");
  EXPECT_EQ(outcome(client), "3");
  EXPECT_THAT(fake.requests(),
              ElementsAre(HasSubstr("\"id\":1,"), HasSubstr("\"id\":2,"), HasSubstr("\"id\":3,"),
                          HasSubstr("\"id\":4,"), HasSubstr("\"id\":1,")));
}

}  // namespace
}  // namespace vell::ipc
