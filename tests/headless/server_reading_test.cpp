#include <filesystem>
#include <vector>

#include "json/index.h"
#include "json/writer.h"
#include "tests/headless/server_conversation.h"

namespace vell::headless {
namespace {

using Reading = Conversation;

TEST_F(Reading, FindsRowsByEveryKindOfReference) {
  server_.open("groceries.json", groceries);
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"[]", "Groceries(Milk Bread) Later"},
      {R"(["//*"])", "Groceries(Milk Bread) Later"},
      {R"(["4"])", "Bread"},
      {R"(["milk","2"])", "Groceries(Milk)"},
      {R"(["@selection"])", "Bread"},
      {R"(["5","3","5"])", "Milk Later"},
      {R"x(["(//task)","(/*[-1] union //task)"])x", "Milk Later"},
  };
  call("editor.update", R"({"selectRow":"4"})");
  for (const auto& [refs, expected] : cases)
    EXPECT_EQ(texts(call("outline.get", R"({"rows":true,"rowRefs":)" + refs + "}")), expected) << refs;
  EXPECT_EQ(texts(call("outline.get", R"({"shape":"flat","rows":true})")), "Groceries Milk Bread Later");
  // What has the id comes before what reads as a path.
  server_.open("odd.json", R"x({"rows":[{"id":"(/*)","text":[{"string":"odd"}]},{"text":[]}]})x");
  EXPECT_EQ(texts(call("outline.get", R"x({"rows":true,"rowRefs":["(/*)"]})x")), "odd");
}

std::string repeat(std::size_t times, std::string_view text) {
  std::string all;
  while (times-- > 0) all += text;
  return all;
}

TEST_F(Reading, EvaluatesTheDeepestPaths) {
  server_.open("groceries.json", groceries);
  const std::vector<std::pair<std::string, std::string>> cases = {
      {repeat(1000, "//* count(") + "//task" + repeat(1000, ") > 0"), "Groceries(Milk Bread) Later"},
      {"//* " + repeat(1000, "(") + "@id = milk" + repeat(1000, ")"), "Milk"},
      {"//* " + repeat(1000, "not ") + "@text = Milk", "Milk"},
      {"//* @text = Milk" + repeat(1000, " or @text = Later"), "Milk Later"},
      {"//* @text = Milk" + repeat(1000, " and @text = Milk"), "Milk"},
      {"//* level()" + repeat(1000, " + 1") + " = 1002", "Milk Bread"},
      {"//* " + repeat(998, "-") + "level() = 2", "Milk Bread"},
      {"//task" + repeat(1000, " union /*[-1]"), "Milk Later"},
  };
  for (const auto& [path, expected] : cases) {
    const std::string params = R"({"rows":true,"rowRefs":[)" + json::quoted(path) + "]}";
    EXPECT_EQ(texts(call("outline.get", params)), expected) << path.substr(0, 30);
  }
}

TEST_F(Reading, NamesTheRootWithTheTimesOfItsOutline) {
  server_.open("groceries.json", groceries);
  const std::string created = at(call("outline.get"), "created");
  for (const char* ref : {"/", "@focused"}) {
    const std::string rows = call("outline.get", R"({"rows":true,"rowRefs":[")" + std::string(ref) + "\"]}");
    ASSERT_EQ(elements(rows).size(), 1U) << ref;
    EXPECT_EQ(at(rows, "0.type"), R"("root")") << ref;
    EXPECT_EQ(at(rows, "0.created"), created) << ref;
    EXPECT_EQ(at(rows, "0.modified"), created) << ref;
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
      {"@selecton",
       R"(No row of "groceries.json" has the persistent id "@selecton" (did you mean "@selection"?))"},
  };
  for (const auto& [ref, message] : cases)
    EXPECT_EQ(call("outline.get", R"({"rowRefs":[)" + json::quoted(ref) + R"(]})"), message);
  const std::size_t deep = json::maxDepth - 3;
  EXPECT_EQ(call("outline.get", R"({"rowRefs":)" + std::string(deep, '[') + std::string(deep, ']') + "}"),
            "rowRefs[0]: expected a string, got an array");
  server_.open("empty.json", R"({"rows":[]})");
  EXPECT_EQ(call("outline.get", R"({"rowRefs":["@selection"]})"),
            R"(Nothing is selected: "empty.json" has no rows)");
}

TEST_F(Reading, AnswersInEveryFormatAndNamesThemWhereItIsNoneOfThem) {
  server_.open("groceries.json", groceries);
  const auto formatParams = [](const std::string& format) { return R"({"format":")" + format + "\"}"; };
  for (const char* format : {"session", "json"})
    EXPECT_TRUE(call("outline.get", formatParams(format)).starts_with('{')) << format;
  for (const char* format : {"markdown", "vell", "opml", "txt"}) {
    const std::string text = call("outline.get", formatParams(format));
    EXPECT_TRUE(text.starts_with('"')) << format;
    EXPECT_NE(text.find("Milk"), std::string::npos) << text;
  }
  const std::string message = call("outline.get", R"({"format":"pdf"})");
  EXPECT_EQ(message.find("format: expected one of \"session\", \"json\""), 0U) << message;
}

TEST_F(Reading, AFileIsOneOutlineHoweverOftenAndByWhateverPathItIsOpened) {
  server_.open("groceries.json", groceries);
  server_.open("other.json", R"({"id":"outline-2","rows":[]})");
  const std::string path = server_.home() / "groceries.json";
  const std::string link = server_.home() / "link.json";
  std::filesystem::create_symlink(path, link);
  const std::string summary =
      R"({"displayName":"groceries.json","fileURL":"file://)" + path + R"(","persistentId":"outline-1"})";
  EXPECT_EQ(at(call("application.open",
                    R"({"paths":[)" + json::quoted(server_.home() / "./x/../groceries.json") + R"(]})"),
               "0.outline"),
            summary);
  EXPECT_EQ(at(call("application.open", R"({"paths":[)" + json::quoted(link) + R"(]})"), "0.outline"),
            summary);
  EXPECT_EQ(call("outline.findByPath", R"({"path":)" + json::quoted(link) + R"(})"), summary);
  EXPECT_EQ(call("outline.findByPersistentId", R"({"persistentId":"outline-1"})"), summary);
  EXPECT_EQ(call("outline.findByPersistentId", R"({"persistentId":"outline-3"})"), "null");
  EXPECT_EQ(elements(call("outline.list")).size(), 2U);
}

TEST_F(Reading, KnowsTheFrontmostOutlineAndItsEditor) {
  server_.open("groceries.json", groceries);
  server_.open("other.json", R"({"id":"outline-2","rows":[]})");
  EXPECT_EQ(at(call("outline.list"), "0.persistentId"), R"("outline-2")");
  EXPECT_EQ(at(call("outline.bringToFront", R"({"outline":"outline-1"})"), "persistentId"), R"("outline-1")");
  const std::string editors = call("editor.list");
  ASSERT_EQ(elements(editors).size(), 2U);
  EXPECT_EQ(at(editors, "0.outlineId"), R"("outline-1")");
  const std::string snapshot = call("editor.get");
  EXPECT_EQ(snapshot, call("editor.get", R"({"editor":)" + at(editors, "0.id") + "}"));
  EXPECT_EQ(at(snapshot, "focused"), "[1]");
  EXPECT_EQ(at(snapshot, "selection"), R"({"anchor":1,"head":1,"rows":[],"text":""})");
  EXPECT_EQ(at(snapshot, "collapsed"), "[]");
}

TEST_F(Reading, LargeAnswersGoOutWhileASlowClientHoldsItsOwnBack) {
  std::string rows;
  for (int i = 0; i < 20'000; ++i) rows += "row\n";
  server_.open("large.txt", rows);
  const TestClient slow = server_.client();
  slow.send(
      "{\"id\":1,\"method\":\"outline.get\"}\n{\"id\":2,\"method\":\"outline.get\"}\n");  // reads nothing
  EXPECT_EQ(elements(call("outline.get", R"({"rowRefs":["3"],"rows":true})")).size(), 1U);
  EXPECT_GT(client_.ask(R"({"id":1,"method":"outline.get"})").size(),
            20'000 * std::string(R"("string":"row")").size());
}

}  // namespace
}  // namespace vell::headless
