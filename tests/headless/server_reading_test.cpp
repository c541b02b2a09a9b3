#include <filesystem>
#include <vector>

#include "tests/headless/server_conversation.h"

namespace vell::headless {
namespace {

using Reading = Conversation;
using nlohmann::json;

TEST_F(Reading, FindsRowsByEveryKindOfReference) {
  server_.open("groceries.json", groceries);
  const std::vector<std::pair<json, std::string>> cases = {
      {json::array(), "Groceries(Milk Bread) Later"},
      {{"//*"}, "Groceries(Milk Bread) Later"},
      {{"4"}, "Bread"},
      {{"milk", "2"}, "Groceries(Milk)"},
      {{"@selection"}, "Bread"},
      {{"5", "3", "5"}, "Milk Later"},
  };
  call("editor.update", {{"selectRow", "4"}});
  for (const auto& [refs, expected] : cases)
    EXPECT_EQ(texts(call("outline.get", {{"rowRefs", refs}, {"rows", true}})), expected) << refs;
  EXPECT_EQ(texts(call("outline.get", {{"shape", "flat"}, {"rows", true}})), "Groceries Milk Bread Later");
}

TEST_F(Reading, NamesTheRootWithTheTimesOfItsOutline) {
  server_.open("groceries.json", groceries);
  const json created = call("outline.get", json::object())["created"];
  for (const char* ref : {"/", "@focused"}) {
    const json rows = call("outline.get", {{"rowRefs", {ref}}, {"rows", true}});
    ASSERT_EQ(rows.size(), 1U) << ref;
    EXPECT_EQ(rows[0]["type"], "root") << ref;
    EXPECT_EQ(rows[0]["created"], created) << ref;
    EXPECT_EQ(rows[0]["modified"], created) << ref;
  }
}

TEST_F(Reading, SaysWhichReferenceNamesNothing) {
  server_.open("groceries.json", groceries);
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"99", R"(No row of "groceries.json" has the session id 99)"},
      {"99999999999", R"(No row of "groceries.json" has the session id 99999999999)"},
      {"bread", R"(No row of "groceries.json" has the persistent id "bread")"},
      {"", R"(No row of "groceries.json" has the persistent id "")"},
      {"..", R"(No row of "groceries.json" has the persistent id ".." (a path begins with "/"))"},
  };
  for (const auto& [ref, message] : cases) EXPECT_EQ(call("outline.get", {{"rowRefs", {ref}}}), message);
  server_.open("empty.json", R"({"rows":[]})");
  EXPECT_EQ(call("outline.get", {{"rowRefs", {"@selection"}}}),
            R"(Nothing is selected: "empty.json" has no rows)");
}

TEST_F(Reading, AnswersInEveryFormatAndNamesThemWhereItIsNoneOfThem) {
  server_.open("groceries.json", groceries);
  for (const char* format : {"session", "json"})
    EXPECT_TRUE(call("outline.get", {{"format", format}}).is_object());
  for (const char* format : {"markdown", "vell", "opml", "txt"}) {
    const json text = call("outline.get", {{"format", format}});
    ASSERT_TRUE(text.is_string()) << format;
    EXPECT_NE(text.get<std::string>().find("Milk"), std::string::npos) << text;
  }
  const std::string message = call("outline.get", {{"format", "pdf"}});
  EXPECT_EQ(message.find("format: expected one of \"session\", \"json\""), 0U) << message;
}

TEST_F(Reading, AFileIsOneOutlineHoweverOftenAndByWhateverPathItIsOpened) {
  server_.open("groceries.json", groceries);
  server_.open("other.json", R"({"id":"outline-2","rows":[]})");
  const std::string path = server_.home() / "groceries.json";
  const std::string link = server_.home() / "link.json";
  std::filesystem::create_symlink(path, link);
  const json summary = {
      {"displayName", "groceries.json"}, {"fileURL", "file://" + path}, {"persistentId", "outline-1"}};
  EXPECT_EQ(call("application.open", {{"paths", {server_.home() / "./x/../groceries.json"}}})[0]["outline"],
            summary);
  EXPECT_EQ(call("application.open", {{"paths", {link}}})[0]["outline"], summary);
  EXPECT_EQ(call("outline.findByPath", {{"path", link}}), summary);
  EXPECT_EQ(call("outline.findByPersistentId", {{"persistentId", "outline-1"}}), summary);
  EXPECT_EQ(call("outline.findByPersistentId", {{"persistentId", "outline-3"}}), json());
  EXPECT_EQ(call("outline.list", {}).size(), 2U);
}

TEST_F(Reading, KnowsTheFrontmostOutlineAndItsEditor) {
  server_.open("groceries.json", groceries);
  server_.open("other.json", R"({"id":"outline-2","rows":[]})");
  EXPECT_EQ(call("outline.list", {})[0]["persistentId"], "outline-2");
  EXPECT_EQ(call("outline.bringToFront", {{"outline", "outline-1"}})["persistentId"], "outline-1");
  const json editors = call("editor.list", {});
  ASSERT_EQ(editors.size(), 2U);
  EXPECT_EQ(editors[0]["outlineId"], "outline-1");
  const json snapshot = call("editor.get", {});
  EXPECT_EQ(snapshot, call("editor.get", {{"editor", editors[0]["id"]}}));
  const json selection = {{"anchor", 1}, {"head", 1}, {"rows", json::array()}, {"text", ""}};
  EXPECT_EQ(snapshot["focused"], json({1}));
  EXPECT_EQ(snapshot["selection"], selection);
  EXPECT_EQ(snapshot["collapsed"], json::array());
}

TEST_F(Reading, LargeAnswersGoOutWhileASlowClientHoldsItsOwnBack) {
  std::string rows;
  for (int i = 0; i < 20'000; ++i) rows += "row\n";
  server_.open("large.txt", rows);
  const TestClient slow = server_.client();
  slow.send(
      "{\"id\":1,\"method\":\"outline.get\"}\n{\"id\":2,\"method\":\"outline.get\"}\n");  // reads nothing
  EXPECT_EQ(call("outline.get", {{"rowRefs", {"3"}}, {"rows", true}}).size(), 1U);
  EXPECT_GT(client_.ask(R"({"id":1,"method":"outline.get"})").size(),
            20'000 * std::string(R"("string":"row")").size());
}

}  // namespace
}  // namespace vell::headless
