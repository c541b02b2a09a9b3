#include "json/writer.h"
#include "tests/headless/server_conversation.h"

namespace vell::headless {
namespace {

class Observing : public Conversation {
 protected:
  Observing() { server_.open("groceries.json", groceries); }

  /// The params of the next notification.
  static std::string next(TestClient& client) { return at(client.line(), "params"); }
  static TestClient& subscribed(TestClient& client, const std::string& method,
                                const std::string& params = "{}") {
    const std::string answer = client.ask(R"({"id":1,"method":")" + method + R"(","params":)" + params + "}");
    EXPECT_NE(at(answer, "result.subscriptionId"), "") << answer;
    return client;
  }
};

TEST_F(Observing, AnOutlineIsToldAtFirstAndWheneverItLooksDifferent) {
  TestClient watcher = server_.client();
  subscribed(watcher, "outline.observe", R"({"rows":true})");
  const std::string first = next(watcher);
  EXPECT_EQ(texts(at(first, "data")), "Groceries(Milk Bread) Later");
  EXPECT_EQ(at(first, "kind"), R"("rows")");
  EXPECT_EQ(at(first, "outline"), R"("outline-1")");
  call("row.update", R"({"rows":["5"],"text":"Now"})");
  const std::string second = next(watcher);
  EXPECT_EQ(texts(at(second, "data")), "Groceries(Milk Bread) Now");
  EXPECT_EQ(at(second, "subscriptionId"), at(first, "subscriptionId"));
}

TEST_F(Observing, TellsInTheFormatAndShapeAskedFor) {
  TestClient text = server_.client();
  subscribed(text, "outline.observe", R"({"format":"markdown","path":"//*"})");
  const std::string snapshot = next(text);
  EXPECT_EQ(at(snapshot, "kind"), R"("outline")");
  EXPECT_NE(at(snapshot, "data").find("- [ ] Milk"), std::string::npos) << snapshot;
  TestClient flat = server_.client();
  subscribed(flat, "outline.observe", R"({"shape":"flat","rows":true})");
  EXPECT_EQ(texts(at(next(flat), "data")), "Groceries Milk Bread Later");
}

TEST_F(Observing, TheListOfDocumentsIsToldInItsOrder) {
  TestClient watcher = server_.client();
  subscribed(watcher, "documents.observe", R"({})");
  EXPECT_EQ(elements(at(next(watcher), "data")).size(), 1U);
  server_.open("other.json", R"({"id":"outline-2","rows":[]})");
  const std::string opened = next(watcher);
  EXPECT_EQ(at(opened, "kind"), R"("documents")");
  EXPECT_EQ(at(opened, "data"), call("outline.list"));
  call("outline.bringToFront", R"({"outline":"outline-1"})");
  EXPECT_EQ(at(next(watcher), "data.0.persistentId"), R"("outline-1")");
  call("outline.close", R"({})");
  EXPECT_EQ(elements(at(next(watcher), "data")).size(), 1U);
}

TEST_F(Observing, EndsWithItsOutlineAfterTheLastChange) {
  TestClient watcher = server_.client();
  subscribed(watcher, "outline.observe", R"({"rows":true})");
  watcher.endInput();
  next(watcher);
  call("row.delete", R"({"rows":["2"]})");
  call("outline.close", R"({})");
  EXPECT_EQ(texts(at(next(watcher), "data")), "Later");
  const std::string end = next(watcher);
  EXPECT_EQ(at(end, "kind"), R"("subscription.closed")");
  EXPECT_EQ(at(end, "data"), R"({"reason":"outlineClosed"})");
  EXPECT_EQ(watcher.line(), "<end>");
}

TEST_F(Observing, RefusesWhatSelectsNoRows) {
  for (const char* path : {"count(//*)", "//*[", "Milk", ""})
    EXPECT_FALSE(call("outline.observe", R"({"path":)" + json::quoted(path) + "}").starts_with('{')) << path;
  EXPECT_EQ(call("outline.observe", R"({"outline":"x"})"), R"(No open outline has the persistent id "x")");
}

TEST_F(Observing, ManyWatchAndOneThatDoesNotReadHarmsNobody) {
  const TestClient deaf = server_.client();
  for (int i = 0; i < 200; ++i)
    deaf.send(R"({"id":1,"method":"outline.observe"})"
              "\n");
  std::vector<TestClient> watchers;
  for (int i = 0; i < 50; ++i) {
    watchers.push_back(server_.client());
    subscribed(watchers.back(), "outline.observe", R"({"rows":true})");
    next(watchers.back());
  }
  const std::string text(20'000, 'x');
  for (int i = 0; i < 30; ++i)
    call("row.update", R"({"rows":["5"],"text":)" + json::quoted(text + std::to_string(i)) + R"(})");
  for (TestClient& watcher : watchers) {
    while (texts(at(next(watcher), "data")).substr(22) != text + "29") continue;
  }
}

}  // namespace
}  // namespace vell::headless
