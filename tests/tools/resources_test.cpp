#include <gmock/gmock.h>

#include "outlines/resource_uri.h"
#include "tests/tools/host.h"

namespace vell::tools::tests {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using vell::tests::FakeApplication;
using vell::tests::TemporaryHome;

std::string summary(const std::string& id, const std::string& name, const std::string& fileURL = "") {
  mcp::Value::Object object{{"persistentId", id}, {"displayName", name}};
  object.emplace("fileURL", fileURL.empty() ? mcp::Value() : mcp::Value(fileURL));
  return mcp::encode(object);
}

bool asks(const std::string& request, const std::string& method) {
  return request.find("\"" + method + "\"") != std::string::npos;
}

/// An application with these outlines open, each of which reads as its persistent id and a line.
FakeApplication::Script having(const std::vector<std::string>& summaries) {
  std::string list;
  for (const std::string& each : summaries) list += (list.empty() ? "" : ",") + each;
  return [list, summaries](const std::string& request) -> FakeApplication::Reply {
    if (asks(request, "documents.observe")) {
      return {R"({"id":1,"result":{}})"
              "\n"
              R"({"method":"event","params":{"kind":"documents","data":[)" +
              list + "]}}\n"};
    }
    if (asks(request, "outline.findByPath")) return FakeApplication::result(summaries.front());
    if (asks(request, "outline.bringToFront")) return FakeApplication::result("{}");
    const mcp::Value message = mcp::decode(request);
    const mcp::Value* outline = message.find("params")->find("outline");
    if (!outline) return FakeApplication::result("\"the frontmost\"");
    if (*outline == "gone") return FakeApplication::error(-32000, "No such outline: gone");
    return FakeApplication::result(mcp::encode(*outline->string() + "\n"));
  };
}

class Resources : public ::testing::Test {
 protected:
  std::string read(Host& host, const std::string& uri) {
    const mcp::Value message = host.ask("resources/read", mcp::encode(mcp::Value::Object{{"uri", uri}}));
    if (const auto* error = message.find("error")) return *error->find("message")->string();
    const mcp::Value& item = message.find("result")->find("contents")->array()->front();
    EXPECT_EQ(*item.find("uri"), uri);
    EXPECT_EQ(*item.find("mimeType"), "text/markdown");
    return *item.find("text")->string();
  }

  /// Names of the listed resources.
  std::vector<std::string> list(Host& host) {
    const mcp::Value answer = host.ask("resources/list");
    std::vector<std::string> names;
    for (const auto& resource : *answer.find("result")->find("resources")->array()) {
      names.push_back(*resource.find("name")->string());
    }
    return names;
  }

  /// The next messages are these notices.
  void expectNotices(Host& host, const std::vector<std::string>& methods) {
    for (const std::string& method : methods) {
      EXPECT_EQ(host.next().find("method")->description(), "\"notifications/resources/" + method + "\"");
    }
  }

  const TemporaryHome home_;
  const std::string odd_ = home_.write("a b%41#?;é/it's.vell", "");
};

TEST_F(Resources, AreReadAsMarkdown) {
  const std::string encoded = "vell://file/" + outlines::encodePathSegment(odd_);
  EXPECT_THAT(encoded, HasSubstr("%2Fa%20b%2541%23%3F%3B%C3%A9%2Fit's.vell"));
  FakeApplication application(having({summary("p1", "Odd", "file://" + odd_)}));
  Host host;
  host.initialize();
  const std::pair<std::string, std::string> rows[] = {
      {encoded, "p1\n"},
      {"vell://outline/p%202", "p 2\n"},
      {"vell://current-outline", "the frontmost"},
      {"vell://outline/gone",
       "Internal error: Error reading resource vell://outline/gone: Vell error -32000: No such outline: "
       "gone"},
      {"vell://outline/",
       "Internal error: Error reading resource vell://outline/: Missing persistentId in URI: "
       "vell://outline/"},
      {"vell://file/",
       "Internal error: Error reading resource vell://file/: Missing path in URI: vell://file/"},
      {"vell://file/%2Fno%2Fwhere",
       "Internal error: Error reading resource vell://file/%2Fno%2Fwhere: File not found: /no/where"},
      {"vell://file/%2Fa%00",
       "Internal error: Error reading resource vell://file/%2Fa%00: A path holds no NUL character"},
      {"vell://file/a.vell",
       "Internal error: Error reading resource vell://file/a.vell: The path is not absolute: a.vell"},
      {"vell://file/..%2Fa.vell",
       "Internal error: Error reading resource vell://file/..%2Fa.vell: The path is not absolute: ../a.vell"},
      {"vell://file/a/b", "Resource not found: vell://file/a/b"},
      {"vell://nothing", "Resource not found: vell://nothing"},
  };
  for (const auto& [uri, text] : rows) EXPECT_EQ(read(host, uri), text);
}

TEST_F(Resources, FollowTheOpenOutlines) {
  Host host;
  host.initialize();
  EXPECT_THAT(list(host), ElementsAre("Current Outline"));
  EXPECT_THAT(read(host, "vell://current-outline"), HasSubstr("Vell.app must be running"));
  {
    FakeApplication application(having({summary("p1", "Odd", "file://" + odd_), summary("p2", "Untitled")}));
    expectNotices(host, {"list_changed", "updated"});
    EXPECT_THAT(list(host), ElementsAre("Current Outline", "Odd", "Untitled"));
    EXPECT_EQ(read(host, "vell://file/" + outlines::encodePathSegment(odd_)), "p1\n");
    EXPECT_EQ(read(host, "vell://outline/p2"), "p2\n");
  }
  expectNotices(host, {"list_changed", "updated"});
  EXPECT_THAT(list(host), ElementsAre("Current Outline"));
  FakeApplication restarted(having({summary("p2", "Saved", "file://" + odd_)}));
  expectNotices(host, {"list_changed", "updated"});
  EXPECT_THAT(list(host), ElementsAre("Current Outline", "Saved"));
}

TEST_F(Resources, ThatStayOpenAreNotAnnouncedAgainAfterAHiccup) {
  const std::string list = R"({"method":"event","params":{"kind":"documents","data":[)";
  const std::vector<std::string> added = {"list_changed"};
  const std::vector<std::string> goneAndBack = {"list_changed", "updated", "list_changed", "updated"};
  struct Row {
    const char* name;
    FakeApplication::Reply behindTheList;  // how the first subscription ends
    std::vector<std::string> notices;
  };
  const Row rows[] = {
      {"connection lost", {"", true}, added},
      {"no JSON", {"nonsense\n"}, added},
      {"no list", {list + "5]}}\n"}, added},
      {"refused", {"{\"error\":{\"code\":1,\"message\":\"no\"}}\n"}, added},
      {"closed",
       FakeApplication::Reply::line(
           R"({"method":"event","params":{"kind":"subscription.closed","data":{}}})"),
       goneAndBack},
      {"closed, connection lost",
       FakeApplication::Reply::line(R"({"method":"event","params":{"kind":"subscription.closed"}})", true),
       goneAndBack},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Host host;
    host.initialize();
    int subscriptions = 0;
    FakeApplication application([&](const std::string&) -> FakeApplication::Reply {
      if (++subscriptions > 1) return {list + summary("p1", "One") + "," + summary("p2", "Two") + "]}}\n"};
      return {list + summary("p1", "One") + "]}}\n" + row.behindTheList.bytes, row.behindTheList.close};
    });
    expectNotices(host, {"list_changed", "updated"});
    expectNotices(host, row.notices);
    EXPECT_THAT(this->list(host), ElementsAre("Current Outline", "One", "Two"));
  }
}

TEST_F(Resources, TemplatesAreListedAsTheyAreDeclared) {
  Host host;
  host.initialize();
  const mcp::Value answer = host.ask("resources/templates/list");
  std::vector<std::string> listed;
  for (const auto& each : *answer.find("result")->find("resourceTemplates")->array()) {
    listed.push_back(each.find("uriTemplate")->description() + each.find("name")->description());
  }
  EXPECT_THAT(listed, ElementsAre("\"vell://file/{path}\"\"vell_outline_file\"",
                                  "\"vell://outline/{persistentId}\"\"vell_outline_unsaved\""));
}

}  // namespace
}  // namespace vell::tools::tests
