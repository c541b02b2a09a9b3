#include <gmock/gmock.h>

#include <algorithm>
#include <future>
#include <set>

#include "tests/tools/host.h"

namespace vell::tools::tests {
namespace {

using vell::tests::FakeApplication;
using vell::tests::TemporaryHome;

/// The requests for an opening's events are not the tools'.
std::vector<std::string> toolRequests(const FakeApplication& application) {
  std::vector<std::string> requests;
  for (const std::string& request : application.requests()) {
    if (request.find("documents.observe") == std::string::npos) requests.push_back(request);
  }
  return requests;
}

TEST(Tools, AreListedInOrderWithTheirHints) {
  struct Row {
    const char* name;
    bool readOnly, destructive, idempotent, openWorld;
  };
  const Row rows[] = {
      {"vell_open_outline", false, false, true, false},
      {"vell_create_outline", false, false, false, false},
      {"vell_create_row", false, false, false, false},
      {"vell_create_rows", false, false, false, false},
      {"vell_get_commands", true, false, true, false},
      {"vell_get_editor", true, false, true, false},
      {"vell_get_editors", true, false, true, false},
      {"vell_get_outline", true, false, true, false},
      {"vell_get_outlines", true, false, true, false},
      {"vell_move_rows", false, false, true, false},
      {"vell_update_editor", false, false, true, false},
      {"vell_update_rows", false, true, false, false},
      {"vell_delete_rows", false, true, false, false},
      {"vell_close_outline", false, true, false, false},
      {"vell_evaluate_commands", false, true, false, false},
      {"vell_evaluate_script", false, true, false, true},
      {"vell_outline_path_check", true, false, true, false},
  };
  const TemporaryHome home;
  Host host;
  host.initialize();
  const mcp::Value answer = host.ask("tools/list");
  const auto& tools = *answer.find("result")->find("tools")->array();
  ASSERT_EQ(tools.size(), std::size(rows));
  for (std::size_t i = 0; i < tools.size(); ++i) {
    const Row& row = rows[i];
    EXPECT_EQ(*tools[i].find("name"), row.name);
    EXPECT_FALSE(tools[i].find("title")->string()->empty()) << row.name;
    EXPECT_FALSE(tools[i].find("outputSchema")) << row.name;
    const mcp::Value& hints = *tools[i].find("annotations");
    EXPECT_EQ(*hints.find("readOnlyHint"), row.readOnly) << row.name;
    EXPECT_EQ(*hints.find("destructiveHint"), row.destructive) << row.name;
    EXPECT_EQ(*hints.find("idempotentHint"), row.idempotent) << row.name;
    EXPECT_EQ(*hints.find("openWorldHint"), row.openWorld) << row.name;
  }
}

/// What some hosts choke on, below the top of a schema.
void expectPlain(const mcp::Value& schema, const std::string& place) {
  for (const char* keyword : {"$schema", "$ref", "oneOf", "allOf", "not", "const"}) {
    EXPECT_FALSE(schema.find(keyword)) << place << " " << keyword;
  }
  if (const auto* type = schema.find("type")) {
    ASSERT_TRUE(type->string()) << place;
    if (*type == "array") {
      ASSERT_TRUE(schema.find("items")) << place;
      expectPlain(*schema.find("items"), place + "[]");
    }
  }
  if (const auto* any = schema.find("anyOf")) {
    for (const auto& alternative : *any->array()) expectPlain(alternative, place + "|");
  }
}

TEST(Tools, HaveSchemasThatEveryHostAccepts) {
  const TemporaryHome home;
  Host host;
  host.initialize();
  const mcp::Value answer = host.ask("tools/list");
  for (const mcp::Value& tool : *answer.find("result")->find("tools")->array()) {
    const std::string& name = *tool.find("name")->string();
    const mcp::Value& schema = *tool.find("inputSchema");
    EXPECT_EQ(*schema.find("type"), "object") << name;
    EXPECT_EQ(*schema.find("additionalProperties"), false) << name;
    EXPECT_TRUE(schema.find("required")->array()) << name;
    EXPECT_FALSE(schema.find("anyOf")) << name;
    for (const auto& [parameter, property] : *schema.find("properties")->object()) {
      EXPECT_TRUE(property.find("description")) << name << "." << parameter;
      expectPlain(property, name + "." + parameter);
    }
  }
}

// What else they send, a test of the commands compares with these.
TEST(Tools, SendOneRequestAndPassItsResultOn) {
  struct Row {
    const char* tool;
    const char* arguments;
    const char* request;  // behind `"method":`
  };
  const Row rows[] = {
      {"vell_get_outline", "{}",
       R"("outline.get","params":{"format":"session","rows":false,"shape":"tree"})"},
      {"vell_get_outline", R"({"refs":[]})",
       R"("outline.get","params":{"format":"session","rows":false,"shape":"tree"})"},
      {"vell_get_outlines", "null", R"("outline.list")"},
      {"vell_get_editor", R"({"editor":null})", R"("editor.get","params":{})"},
      {"vell_create_rows", R"({"markdown":"a\n\tb","before":"x","after":"y","outline":"o","position":3.0})",
       R"("row.createMany","params":{"after":"y","before":"x","markdown":"a\n\tb","outline":"o","position":"3"})"},
      {"vell_update_rows",
       R"({"rows":["1"],"text":[{"string":"é","attrs":{"a":"u"}}],"attributes":{"k":"v","gone":null}})",
       R"("row.update","params":{"attributes":{"gone":null,"k":"v"},"rows":["1"],"text":[{"attrs":{"a":"u"},"string":"é"}]})"},
  };
  const TemporaryHome home;
  FakeApplication application(FakeApplication::result(R"({"b":1.50,"a":"\u00e9/"})"));
  Host host;
  host.initialize();
  int id = 0;
  for (const Row& row : rows) {
    EXPECT_EQ(host.call(row.tool, row.arguments), R"({"a":"é/","b":1.50})") << row.tool;
    EXPECT_EQ(toolRequests(application).back(),
              R"({"id":)" + std::to_string(++id) + R"(,"jsonrpc":"2.0","method":)" + row.request + "}");
  }
}

TEST(Tools, RefuseBadArgumentsBeforeAnythingIsSent) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"vell_delete_rows", "{}", "error: Input validation error: Missing required parameter 'rows'"},
      {"vell_delete_rows", R"({"rows":null})",
       "error: Input validation error: Missing required parameter 'rows'"},
      {"vell_update_rows", R"({"rows":["a"],"text":3})",
       "error: Input validation error: text: expected a string or an array of objects, got the number 3 "
       "(write \"3\")"},
      {"vell_update_rows", R"({"rows":["a"],"text":[{"attrs":{}}]})",
       "error: Input validation error: text[0]: missing 'string'"},
      {"vell_update_rows", R"({"rows":["a","b"],"persistentId":"p"})",
       "error: persistentId requires exactly one row."},
      {"vell_get_outline", R"({"output":"txt"})",
       "error: Input validation error: output: expected 'json', 'session' or 'markdown', got the string "
       "\"txt\""},
  };
  const TemporaryHome home;
  FakeApplication application(FakeApplication::result("1"));
  Host host;
  host.initialize();
  for (const auto& [tool, arguments, text] : rows) EXPECT_EQ(host.call(tool, arguments), text);
  EXPECT_THAT(toolRequests(application), ::testing::IsEmpty());
}

TEST(Tools, SayWhyTheApplicationDidNotAnswer) {
  const TemporaryHome home;
  Host host;
  host.initialize();
  EXPECT_EQ(host.call("vell_get_outlines", "{}"), "[]");
  EXPECT_EQ(host.call("vell_get_editors", "{}"), "[]");
  EXPECT_THAT(host.call("vell_get_outline", "{}"),
              ::testing::StartsWith("error: Vell.app must be running for CLI/MCP access.\nError: (socket "));
  EXPECT_THAT(host.call("vell_open_outline", R"({"path":"/nowhere.vell"})"),
              "error: File not found: /nowhere.vell");
  EXPECT_THAT(host.call("vell_outline_path_check", R"({"path":" //task "})"),
              ::testing::StartsWith("-- Parse Tree --"));
  {
    FakeApplication application([](const std::string& request) {
      if (request.find("editor.get") != std::string::npos) return FakeApplication::error(-32001, "no editor");
      if (request.find("row.delete") != std::string::npos) return FakeApplication::Reply{"", true};
      return FakeApplication::Reply{"not json\n"};
    });
    EXPECT_EQ(host.call("vell_get_editor", "{}"), "error: Vell error -32001: no editor");
    EXPECT_EQ(host.call("vell_delete_rows", R"({"rows":["1"]})"),
              "error: Vell closed the connection without sending a response.");
    EXPECT_THAT(host.call("vell_get_commands", "{}"), ::testing::StartsWith("error: "));
    EXPECT_EQ(toolRequests(application).back(), R"({"id":1,"jsonrpc":"2.0","method":"command.list"})");
  }
  EXPECT_EQ(host.call("vell_get_outlines", "{}"), "[]");
  FakeApplication restarted(FakeApplication::result("2"));
  EXPECT_EQ(host.call("vell_get_outlines", "{}"), "2");
}

TEST(Tools, HangingInTheApplicationDelayNothingElse) {
  const TemporaryHome home;
  // The first call is answered only when it is asked for again: never.
  FakeApplication application(FakeApplication::Reply{});
  Host host;
  host.initialize();
  host.requestTool("vell_get_commands", "{}");
  const int waiting = host.requestTool("vell_get_editors", "{}");
  EXPECT_TRUE(host.ask("ping").find("result"));
  EXPECT_TRUE(host.ask("tools/list").find("result"));
  EXPECT_THAT(host.call("vell_outline_path_check", "{}"), ::testing::StartsWith("Outline Path Cookbook"));
  host.send(R"({"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":)" +
            std::to_string(waiting) + "}}");
  EXPECT_TRUE(host.ask("ping").find("result"));
  host.leave();
  EXPECT_TRUE(host.next().isNull());
  EXPECT_THAT(toolRequests(application), ::testing::ElementsAre(::testing::HasSubstr("command.list")));
}

/// A JSON array of that many times the same.
std::string list(const std::string& item, int count) {
  std::string items = "[" + item;
  while (--count > 0) items += "," + item;
  return items + "]";
}

TEST(Tools, RefuseAnswersThatWouldEndTheSession) {
  const auto leaf = [](const std::string& string) {
    return R"({"id":1,"text":[{"string":")" + string + R"("}],"type":"body"})";
  };
  const std::string plain = leaf(std::string(3000, 'x')), escapes = leaf(std::string(3000, '\\'));
  const std::string branch = R"({"children":)" + list(plain, 2) + R"(,"id":1,"text":[],"type":"body"})";
  const auto string = [](std::size_t size) { return '"' + std::string(size, 'x') + '"'; };
  const auto refused = [](const std::string& size) {
    return "error: Vell has done what was asked, but its answer is too large to be sent: " + size +
           "; at most 8 MB can be. Read less of an outline with vell_get_outline: name rows in `refs`, such "
           "as `//heading` or, for the first 200 rows, `//*[0:200]`; `output: markdown` is shorter than "
           "JSON.";
  };
  std::string path;
  while (path.size() < 220'000) path += "/a";
  const std::string get = R"({"name":"vell_get_outline"})", resource = R"({"uri":"vell://outline/p"})",
                    script = R"({"name":"vell_evaluate_script","arguments":{"script":"1"}})",
                    check = R"({"name":"vell_outline_path_check","arguments":{"path":")" + path + "\"}}";
  const struct {
    const char* method;
    std::string params;
    FakeApplication::Reply reply;
    std::string answer;
  } rows[] = {
      {"tools/call", get, FakeApplication::result(R"({"rows":)" + list(branch, 1500) + "}"),
       refused("9.3 MB, 4500 rows")},
      {"tools/call", get, FakeApplication::result(list(escapes, 1500)), refused("9.1 MB, 1500 rows")},
      {"tools/call", get, FakeApplication::result(list(R"({"row":)" + plain + "}", 3000)),
       refused("9.2 MB, 3000 rows")},
      {"tools/call", script, FakeApplication::result(string(7'999'994)), "7999996 bytes"},
      {"tools/call", script, FakeApplication::result(string(7'999'995)), refused("8.0 MB")},
      {"tools/call", script, FakeApplication::error(7, string(9'000'000).substr(1, 9'000'000)), "1019 bytes"},
      {"tools/call", check, {}, "1012 bytes"},
      {"resources/read", resource, FakeApplication::result(string(7'999'999)),
       "Internal error: Error reading resource vell://outline/p: " + refused("8.0 MB").substr(7)},
  };
  const TemporaryHome home;
  Host host;
  host.initialize();
  for (const auto& row : rows) {
    const FakeApplication application([&row](const std::string& request) {
      return request.find("documents.observe") == std::string::npos ? row.reply : FakeApplication::Reply{};
    });
    const std::string text = Host::textOf(host.ask(row.method, row.params));
    EXPECT_EQ(text.size() > 1000 ? std::to_string(text.size()) + " bytes" : text, row.answer);
  }
}

/// An application that never answers the first request of a tool or a resource, and all others with 1.
class HangingApplication {
 public:
  void awaitRequest() { hangs_.get_future().wait(); }
  std::vector<std::string> methods() const {
    std::vector<std::string> methods;
    for (const std::string& request : toolRequests(application_)) {
      methods.push_back(*mcp::decode(request).find("method")->string());
    }
    return methods;
  }

 private:
  FakeApplication::Reply answer(const std::string& request) {
    const bool first = request.find("documents.observe") == std::string::npos && !std::exchange(hung_, true);
    if (!first) return FakeApplication::result("1");
    hangs_.set_value();
    return {};
  }

  bool hung_ = false;
  std::promise<void> hangs_;
  FakeApplication application_{[this](const std::string& request) { return answer(request); }};
};

TEST(Tools, CancelledAreNotAnsweredAndDelayNothing) {
  const TemporaryHome home;
  const std::string open =
      R"({"name":"vell_open_outline","arguments":{"path":")" + home.write("a.vell", "") + "\"}}";
  const std::string editor = R"({"name":"vell_get_editor"})", editors = R"({"name":"vell_get_editors"})",
                    outline = R"({"uri":"vell://outline/p"})";
  struct Row {
    std::string method, params;  // of the request that the application never answers
    std::string second;          // the tool that is called behind it
    std::vector<int> cancelled;
    std::vector<std::string> sent;
  };
  const Row rows[] = {
      {"tools/call", editor, editors, {1, 0}, {"editor.get", "command.list"}},
      {"tools/call", editor, open, {1, 0}, {"editor.get", "command.list"}},
      {"tools/call", editor, editors, {0}, {"editor.get", "editor.list", "command.list"}},
      {"tools/call", open, editors, {0}, {"outline.findByPath", "editor.list", "command.list"}},
      {"resources/read", outline, editors, {0}, {"outline.get", "editor.list", "command.list"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.params + row.second);
    HangingApplication application;
    Host host;
    host.initialize();
    host.ask("logging/setLevel", R"({"level":"debug"})");
    const int first = host.request(row.method, row.params);
    application.awaitRequest();
    const int calls[] = {first, host.request("tools/call", row.second)};
    std::set<std::string> cancelled;
    for (const int index : row.cancelled) {
      const std::string id = std::to_string(calls[index]);
      host.send(R"({"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":)" + id + "}}");
      cancelled.insert(id);
    }
    const int last = host.requestTool("vell_get_commands", "{}");
    for (bool answered = false; !answered || !cancelled.empty();) {
      const mcp::Value message = host.next();
      ASSERT_FALSE(message.isNull());
      const std::string text = message.description();
      std::erase_if(cancelled, [&text](const std::string& id) {
        return text.find(R"("id":")" + id + R"(","message":"Request cancelled)") != std::string::npos;
      });
      EXPECT_EQ(text.find(R"("level":"error")"), std::string::npos) << text;
      if (const auto* id = message.find("id")) {
        EXPECT_TRUE(std::none_of(row.cancelled.begin(), row.cancelled.end(),
                                 [&](int index) { return *id == calls[index]; }));
        answered = answered || *id == last;
      }
    }
    EXPECT_EQ(application.methods(), row.sent);
  }
}

TEST(Tools, AreCalledOneAtATimeInTheOrderOfArrival) {
  constexpr int count = 10'000;
  const TemporaryHome home;
  FakeApplication application([](const std::string& request) {
    return FakeApplication::result(request.substr(6, request.find(',') - 6));
  });
  Host host;
  host.initialize();
  std::thread writer([&host] {
    for (int i = 0; i < count; ++i) host.requestTool("vell_get_commands", "{}");
    host.leave();
  });
  int answered = 0;
  for (mcp::Value message = host.next(); !message.isNull(); message = host.next()) {
    const mcp::Value* id = message.find("id");
    if (!id) continue;
    ++answered;
    const mcp::Value& text = *message.find("result")->find("content")->array()->front().find("text");
    ASSERT_EQ(text, std::to_string(answered));
    ASSERT_EQ(*id, answered + 1);
  }
  writer.join();
  EXPECT_EQ(answered, count);
}

}  // namespace
}  // namespace vell::tools::tests
