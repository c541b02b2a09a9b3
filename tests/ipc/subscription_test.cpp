#include <gmock/gmock.h>

#include "ipc/message.h"
#include "ipc/methods.h"
#include "ipc/outline_summary.h"
#include "ipc/vell_client.h"
#include "json/rewrite.h"
#include "tests/support/fake_application.h"
#include "tests/support/temporary_directory.h"

namespace vell::ipc {
namespace {

using tests::FakeApplication;
using Reply = FakeApplication::Reply;
using testing::ElementsAre;

std::string event(const std::string& params) { return R"({"method":"changed","params":)" + params + "}\n"; }
const std::string closing = R"({"data":{"reason":"appQuitting"},"kind":"subscription.closed"})";

/// The events of one subscription and, in the end, how it ended.
std::vector<std::string> subscription(const Reply& reply) {
  const tests::TemporaryHome home;
  const FakeApplication fake(reply);
  std::vector<std::string> seen;
  try {
    VellClient().subscribe(DocumentsObserve{}, [&](const json::Node& params) {
      seen.push_back(json::toString(params, json::Layout::compact));
    });
    seen.push_back("closed");
  } catch (const std::exception& error) {
    seen.push_back(error.what());
  }
  EXPECT_THAT(fake.requests(), ElementsAre(R"({"id":1,"jsonrpc":"2.0","method":"documents.observe"})"));
  return seen;
}

TEST(Subscription, HandsOnEveryEventUntilItIsClosed) {
  const std::string lost = "Vell closed the connection without sending a response.";
  const std::tuple<const char*, Reply, std::vector<std::string>> cases[] = {
      {"all in one write, and something behind",
       {"{\"id\":1,\"result\":{}}\n" + event("{\"b\":1,\"a\":2}") + event("3") + event(closing) + event("4")},
       {"{\"a\":2,\"b\":1}", "3", closing, "closed"}},
      {"what is no event is skipped",
       {"\n[1]\n5\n\"x\"\n{\"params\":1}\n{\"method\":\"x\"}\n" + event("null") + event(closing)},
       {"null", closing, "closed"}},
      {"kinds elsewhere close nothing",
       {event(R"({"kind":["subscription.closed"]})") + event("\"subscription.closed\"") + event(closing)},
       {R"({"kind":["subscription.closed"]})", "\"subscription.closed\"", closing, "closed"}},
      {"error",
       {event("1") + R"({"id":1,"error":{"code":4,"message":"scalar"}})"
                     "\n"},
       {"1", "Vell error 4: scalar"}},
      {"bare error", Reply::line(R"({"error":{}})"), {"Vell error -1: Unknown error"}},
      {"an error that is no object",
       Reply::line(R"({"error":"x"})"
                   "\n" +
                   event(closing)),
       {closing, "closed"}},
      {"connection lost", {event("1"), true}, {"1", lost}},
      {"last event without its line feed",
       {R"({"method":"m","params":)" + closing + "}", true},
       {closing, "closed"}},
  };
  for (const auto& [name, reply, expected] : cases) EXPECT_EQ(subscription(reply), expected) << name;
}

TEST(Subscription, BrokenJsonEndsItAndIsShown) {
  const auto seen = subscription({event("1") + "{\"met\x01hod\xFF" + std::string(200, 'x') + "\n"});
  ASSERT_EQ(seen.size(), 2U);
  EXPECT_THAT(seen[1], testing::StartsWith("Vell sent an event that is not JSON: "));
  EXPECT_THAT(seen[1], testing::EndsWith(": {\"met?hod?" + std::string(70, 'x') + "..."));
}

TEST(Subscription, TheHandlersErrorEndsIt) {
  const tests::TemporaryHome home;
  const FakeApplication fake([&](const std::string&) { return Reply{event("1") + event("2")}; });
  struct Stop {};
  int seen = 0;
  const auto stop = [&](const json::Node&) {
    ++seen;
    throw Stop();
  };
  EXPECT_THROW(VellClient().subscribe("m", "", stop), Stop);
  EXPECT_EQ(seen, 1);
}

TEST(OutlineSummaries, AreDecodedOrNameTheirFault) {
  const auto decode = [](const std::string& text) -> std::string {
    const json::Document document{json::Text(text)};
    try {
      std::string all;
      for (const OutlineSummary& outline : decodeOutlineSummaries(document.root())) {
        all += outline.persistentId + " " + outline.displayName + " " + outline.fileURL.value_or("unsaved") +
               "\n";
      }
      return all;
    } catch (const ShapeError& error) {
      return error.what();
    }
  };
  EXPECT_EQ(decode(R"([{"persistentId":"P","displayName":"n","fileURL":"file:///n","more":1},
                       {"persistentId":"Q","displayName":"","fileURL":null}])"),
            "P n file:///n\nQ  unsaved\n");
  EXPECT_EQ(decode("{}"), "Vell sent an unexpected outline summary: the list is not an array");
  EXPECT_EQ(decode(R"([{"persistentId":"P","displayName":"n"},{"persistentId":3,"displayName":"n"}])"),
            "Vell sent an unexpected outline summary: outlines[1].persistentId is not a string");
}

}  // namespace
}  // namespace vell::ipc
