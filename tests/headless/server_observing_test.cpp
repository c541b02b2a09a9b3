#include "tests/headless/server_conversation.h"

namespace vell::headless {
namespace {

using nlohmann::json;

class Observing : public Conversation {
 protected:
  Observing() { server_.open("groceries.json", groceries); }

  /// The params of the next notification.
  static json next(TestClient& client) {
    const std::string line = client.line();
    const json notification = json::parse(line, nullptr, false);
    return notification.is_object() ? notification["params"] : json(line);
  }
  static TestClient& subscribed(TestClient& client, const std::string& method, const json& params) {
    const json answer =
        json::parse(client.ask(json{{"id", 1}, {"method", method}, {"params", params}}.dump()));
    EXPECT_TRUE(answer["result"]["subscriptionId"].is_string()) << answer;
    return client;
  }
};

TEST_F(Observing, AnOutlineIsToldAtFirstAndWheneverItLooksDifferent) {
  TestClient watcher = server_.client();
  subscribed(watcher, "outline.observe", {{"rows", true}});
  const json first = next(watcher);
  EXPECT_EQ(texts(first["data"]), "Groceries(Milk Bread) Later");
  EXPECT_EQ(first["kind"], "rows");
  EXPECT_EQ(first["outline"], "outline-1");
  call("row.update", {{"rows", {"5"}}, {"text", "Now"}});
  const json second = next(watcher);
  EXPECT_EQ(texts(second["data"]), "Groceries(Milk Bread) Now");
  EXPECT_EQ(second["subscriptionId"], first["subscriptionId"]);
}

TEST_F(Observing, TellsInTheFormatAndShapeAskedFor) {
  TestClient text = server_.client();
  subscribed(text, "outline.observe", {{"format", "markdown"}, {"path", "//*"}});
  const json snapshot = next(text);
  EXPECT_EQ(snapshot["kind"], "outline");
  EXPECT_NE(snapshot["data"].get<std::string>().find("- [ ] Milk"), std::string::npos) << snapshot;
  TestClient flat = server_.client();
  subscribed(flat, "outline.observe", {{"shape", "flat"}, {"rows", true}});
  EXPECT_EQ(texts(next(flat)["data"]), "Groceries Milk Bread Later");
}

TEST_F(Observing, TheListOfDocumentsIsToldInItsOrder) {
  TestClient watcher = server_.client();
  subscribed(watcher, "documents.observe", json::object());
  EXPECT_EQ(next(watcher)["data"].size(), 1U);
  server_.open("other.json", R"({"id":"outline-2","rows":[]})");
  const json opened = next(watcher);
  EXPECT_EQ(opened["kind"], "documents");
  EXPECT_EQ(opened["data"], call("outline.list", {}));
  call("outline.bringToFront", {{"outline", "outline-1"}});
  EXPECT_EQ(next(watcher)["data"][0]["persistentId"], "outline-1");
  call("outline.close", json::object());
  EXPECT_EQ(next(watcher)["data"].size(), 1U);
}

TEST_F(Observing, EndsWithItsOutlineAfterTheLastChange) {
  TestClient watcher = server_.client();
  subscribed(watcher, "outline.observe", {{"rows", true}});
  watcher.endInput();
  next(watcher);
  call("row.delete", {{"rows", {"2"}}});
  call("outline.close", json::object());
  EXPECT_EQ(texts(next(watcher)["data"]), "Later");
  const json end = next(watcher);
  EXPECT_EQ(end["kind"], "subscription.closed");
  EXPECT_EQ(end["data"], json::parse(R"({"reason":"outlineClosed"})"));
  EXPECT_EQ(watcher.line(), "<end>");
}

TEST_F(Observing, RefusesWhatSelectsNoRows) {
  for (const char* path : {"count(//*)", "//*[", "Milk", ""})
    EXPECT_TRUE(call("outline.observe", {{"path", path}}).is_string()) << path;
  EXPECT_EQ(call("outline.observe", {{"outline", "x"}}), R"(No open outline has the persistent id "x")");
}

TEST_F(Observing, ManyWatchAndOneThatDoesNotReadHarmsNobody) {
  const TestClient deaf = server_.client();
  for (int i = 0; i < 200; ++i)
    deaf.send(R"({"id":1,"method":"outline.observe"})"
              "\n");
  std::vector<TestClient> watchers;
  for (int i = 0; i < 50; ++i) {
    watchers.push_back(server_.client());
    subscribed(watchers.back(), "outline.observe", {{"rows", true}});
    next(watchers.back());
  }
  const std::string text(20'000, 'x');
  for (int i = 0; i < 30; ++i) call("row.update", {{"rows", {"5"}}, {"text", text + std::to_string(i)}});
  for (TestClient& watcher : watchers) {
    json latest;
    do latest = next(watcher);
    while (latest.is_object() && texts(latest["data"]).substr(22) != text + "29");
    EXPECT_TRUE(latest.is_object());
  }
}

}  // namespace
}  // namespace vell::headless
