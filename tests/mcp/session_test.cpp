#include <gmock/gmock.h>

#include "platform/thread.h"
#include "tests/mcp/support.h"

namespace vell::mcp::tests {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string error(const std::string& id, int code, const std::string& message) {
  return R"({"error":{"code":)" + std::to_string(code) + R"(,"message":")" + message + R"("},"id":)" + id +
         R"(,"jsonrpc":"2.0"})";
}

TEST_F(Session, NegotiatesVersions) {
  const std::pair<const char*, const char*> rows[] = {
      {R"("2025-11-25")", "2025-11-25"}, {R"("2025-06-18")", "2025-06-18"}, {R"("2025-03-26")", "2025-03-26"},
      {R"("2024-11-05")", "2024-11-05"}, {R"("1999-01-01")", "2025-11-25"}, {"null", "2025-03-26"},
  };
  for (const auto& [asked, answered] : rows) {
    MemoryTransport each;
    const auto fresh = server.run(each);
    each.feed(R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"protocolVersion":)" +
              std::string(asked) + "}}");
    EXPECT_EQ(fresh->protocolVersion(), answered) << asked;
    EXPECT_THAT(each.take(), ElementsAre(HasSubstr("\"protocolVersion\":\"" + std::string(answered))))
        << asked;
  }
}

TEST_F(Session, OffersWhatIsRegistered) {
  begin();
  EXPECT_THAT(ask(hello), ElementsAre(HasSubstr(R"("capabilities":{"logging":{}})")));
  addTool("t", nullptr);
  server.registerResource("r://1", {.name = "r"}, nullptr);
  MemoryTransport other;
  const auto second = server.run(other);
  other.feed(hello);
  EXPECT_THAT(
      other.take(),
      ElementsAre(R"({"id":0,"jsonrpc":"2.0","result":{"capabilities":{"logging":{},)"
                  R"("resources":{"listChanged":true,"subscribe":true},"tools":{"listChanged":true}},)"
                  R"("protocolVersion":"2025-11-25","serverInfo":{"name":"test","version":"1"}}})"));
}

TEST(ServerCapabilities, AreWrittenAsTheyAreSet) {
  const std::pair<ServerCapabilities, const char*> rows[] = {
      {{}, "{}"},
      {{.tools = ServerCapabilities::List{}, .resources = ServerCapabilities::Resources{.subscribe = true}},
       R"({"resources":{"subscribe":true},"tools":{}})"},
      {{.prompts = ServerCapabilities::List{.listChanged = true},
        .completions = true,
        .tasks = Value::Object{{"list", Value::Object{}}},
        .experimental = Value::Object{}},
       R"({"completions":{},"experimental":{},"prompts":{"listChanged":true},"tasks":{"list":{}}})"},
  };
  for (const auto& [capabilities, text] : rows) EXPECT_EQ(encode(capabilities.toValue()), text);
}

TEST(ToolDefinition, HasAllItsFields) {
  const ToolDefinition definition{.name = "n",
                                  .title = "T",
                                  .description = "D",
                                  .inputSchema = schema::object({}, {}, true),
                                  .outputSchema = Value::Object{},
                                  .meta = Value::Object{{"m", 1}},
                                  .icons = Value::Array{Value::Object{{"src", "i"}}},
                                  .taskSupport = TaskSupport::optional,
                                  .annotations = ToolAnnotations{.title = "A", .openWorldHint = false}};
  EXPECT_EQ(encode(definition.toValue()),
            R"({"_meta":{"m":1},"annotations":{"openWorldHint":false,"title":"A"},"description":"D",)"
            R"("execution":{"taskSupport":"optional"},"icons":[{"src":"i"}],)"
            R"("inputSchema":{"properties":{},"required":[],"type":"object"},"name":"n","outputSchema":{},)"
            R"("title":"T"})");
  CallToolResult result = CallToolResult::error("x");
  result.meta = Value::Object{{"m", 1}};
  EXPECT_EQ(encode(std::move(result).toValue()),
            R"({"_meta":{"m":1},"content":[{"text":"x","type":"text"}],"isError":true})");
}

TEST_F(Session, AnswersEveryRequestOnceAndNothingElse) {
  addTool("odd", [](const auto&, const auto&) {});
  initialize();
  session->withRequestHandler("boom", [](const auto&, const auto&) { throw std::runtime_error("secret"); });
  struct Row {
    std::string line;
    std::vector<std::string> answers;
  };
  const Row rows[] = {
      // Identifiers come back by value and type.
      {R"({"jsonrpc":"2.0","id":7,"method":"ping"})", {R"({"id":7,"jsonrpc":"2.0","result":{}})"}},
      {R"({"jsonrpc":"2.0","id":"7","method":"ping"})", {R"({"id":"7","jsonrpc":"2.0","result":{}})"}},
      {R"({"jsonrpc":"2.0","id":-9223372036854775808,"method":"ping"})",
       {R"({"id":-9223372036854775808,"jsonrpc":"2.0","result":{}})"}},
      {R"({"jsonrpc":"2.0","id":1.5,"method":"ping"})",
       {error("null", -32600, "Invalid Request: An id is a string or an integer")}},
      {R"({"jsonrpc":"2.0","id":{},"method":"ping"})",
       {error("null", -32600, "Invalid Request: An id is a string or an integer")}},
      {R"({"jsonrpc":"2.0","id":null,"method":"ping"})",
       {error("null", -32600, "Invalid Request: An id is a string or an integer")}},
      // Notifications are never answered, known or not.
      {R"({"jsonrpc":"2.0","method":"ping"})", {}},
      {R"({"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":99}})", {}},
      {R"({"jsonrpc":"2.0","method":"notifications/cancelled","params":[]})", {}},
      // Nor are responses, whatever their identifier.
      {R"({"jsonrpc":"2.0","id":4,"result":{}})", {}},
      {R"({"jsonrpc":"2.0","id":null,"error":{"code":-32700,"message":"x"}})", {}},
      {R"({"jsonrpc":"2.0","id":1.5,"result":null})", {}},
      {R"({"jsonrpc":"2.0","error":{}})", {}},
      {R"([{"jsonrpc":"2.0","result":{}},{"jsonrpc":"2.0","id":{},"error":{}}])", {}},
      {R"({"jsonrpc":"2.0","id":1})",
       {error("1", -32600, "Invalid Request: A message needs a method, a result or an error")}},
      // Methods and params.
      {R"({"jsonrpc":"2.0","id":1,"method":"foo/bar"})",
       {error("1", -32601, "Method not found: Unknown method: foo/bar")}},
      {R"({"jsonrpc":"2.0","id":1,"method":"tools/call"})",
       {error("1", -32602, "Invalid params: Missing required params field")}},
      {R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":[]})",
       {error("1", -32602, "Invalid params: Invalid params field")}},
      {R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":3}})",
       {error("1", -32602, "Invalid params: Invalid params field")}},
      {R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"nope"}})",
       {error("1", -32602, "Invalid params: Unknown tool: nope")}},
      {R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"odd"}})",
       {error("1", -32603, "Internal error: The request was left unanswered")}},
      {R"({"jsonrpc":"2.0","id":1,"method":"resources/read","params":{"uri":"x://y"}})",
       {error("1", -32002, "Resource not found: x://y")}},
      {R"({"jsonrpc":"2.0","id":1,"method":"prompts/list"})",
       {R"({"id":1,"jsonrpc":"2.0","result":{"prompts":[]}})"}},
      {R"({"jsonrpc":"2.0","id":1,"method":"resources/subscribe","params":{"uri":"x"}})",
       {R"({"id":1,"jsonrpc":"2.0","result":{}})"}},
      {R"({"jsonrpc":"2.0","id":1,"method":"logging/setLevel","params":{"level":"loud"}})",
       {R"({"error":{"code":-32602,"data":{"levels":["debug","info","notice","warning","error","critical",)"
        R"("alert","emergency"]},"message":"Invalid params: Invalid params field"},"id":1,"jsonrpc":"2.0"})"}},
      {R"({"jsonrpc":"2.0","id":1,"method":"boom"})",
       {error("1", -32603, "Internal error: An internal error occurred")}},
      {hello, {error("0", -32600, "Invalid Request: Server is already initialized")}},
      // What is no message.
      {R"({"jsonrpc":"1.0","id":1,"method":"ping"})",
       {error("1", -32600, "Invalid Request: Invalid JSON-RPC version")}},
      {R"({"id":1,"method":"ping"})", {error("1", -32600, "Invalid Request: Invalid JSON-RPC version")}},
      {R"({"jsonrpc":"2.0","id":1,"method":5})",
       {error("1", -32600, "Invalid Request: The method is not a string")}},
      {"42", {error("null", -32600, "Invalid Request: A message is a JSON object")}},
      // Batches.
      {"[]", {error("null", -32600, "Invalid Request: A batch is not empty")}},
      {R"([{"jsonrpc":"2.0","method":"ping"}])", {}},
      {R"([{"jsonrpc":"2.0","id":1,"method":"ping"},3,{"jsonrpc":"2.0","id":2,"method":"ping"}])",
       {"["
        R"({"id":1,"jsonrpc":"2.0","result":{}},)" +
        error("null", -32600, "Invalid Request: Invalid batch item format") +
        R"(,{"id":2,"jsonrpc":"2.0","result":{}}])"}},
  };
  for (const Row& row : rows) EXPECT_EQ(ask(row.line), row.answers) << row.line;
}

TEST_F(Session, RefusesWhatIsNotJson) {
  begin();
  const std::string tooDeep(json::maxDepth + 1, '[');
  const std::string nul(1, '\0');
  // What comes in, and the identifier of the answer.
  const std::pair<std::string, std::string> rows[] = {
      {"{", "null"},
      {"{}x", "null"},
      {"\xff", "null"},
      {tooDeep, "null"},
      {"\"id\":1", "null"},
      {R"([{"id":1},)", "null"},
      {R"({"params":{"id":1}},)", "null"},
      {R"({"x":["id",{"id":1}],"y":"id",)", "null"},
      {R"({"id":1.5,"x":tru})", "null"},
      {"{\"id\":\"\xff\"}", "null"},
      {R"({"id":7)", "7"},
      {R"( {"method":"\"","params":{"id":1},"id" : 7 , "x":})", "7"},
      {R"({"id":"a\"b","x":01})", R"("a\"b")"},
      {R"({"id":"a","method":"\ud8"})", R"("a")"},
      {R"({"id":"\ud800","x":01})", "\"\xEF\xBF\xBD\""},
      {"{\"method\":\"\xff\",\"id\":7}", "7"},
      {R"({"jsonrpc":"2.0","id":7,"method":"ping"})" + nul, "7"},
      {R"({"jsonrpc":"2.0","id":7,"method":")" + nul + "\"}", "7"},
      {R"({"id":7,"params":)" + tooDeep, "7"},
  };
  for (const auto& [line, id] : rows) {
    EXPECT_THAT(ask(line), ElementsAre(AllOf(
                               HasSubstr(R"({"code":-32700,"message":"Parse error: Invalid JSON: at byte )"),
                               HasSubstr("\"id\":" + id + ",\"jsonrpc\""))))
        << line.substr(0, 30);
  }
}

std::string nested(std::size_t levels) { return std::string(levels, '[') + std::string(levels, ']'); }

TEST_F(Session, AnswersParamsThatItCannotHoldWithTheirId) {
  initialize();
  const auto ping = [](const std::string& params) {
    return R"({"jsonrpc":"2.0","id":7,"method":"ping","params":)" + params + "}";
  };
  const auto refused = [](const std::string& fault) {
    return error("7", -32602, "Invalid params: Invalid params field: " + fault);
  };
  const std::string pong = R"({"id":7,"jsonrpc":"2.0","result":{}})";
  const std::pair<std::string, std::string> rows[] = {
      {nested(1000), pong},        {nested(1001), refused("nested deeper than 1000 levels")},
      {R"({"x":1e308})", pong},    {R"({"x":-1e309})", refused("a number beyond the range of doubles")},
      {R"({"x":"\ud800"})", pong},
  };
  vell::platform::onStackOf(8 << 20, [&] {  // that of a main thread
    for (const auto& [params, answer] : rows) {
      EXPECT_THAT(ask(ping(params)), ElementsAre(answer)) << params.substr(0, 20);
      EXPECT_THAT(ask("[" + ping(params) + "]"), ElementsAre("[" + answer + "]")) << params.substr(0, 20);
      EXPECT_THAT(ask(R"({"jsonrpc":"2.0","method":"x","params":)" + params + "}"), IsEmpty());
    }
  });
}

TEST_F(Session, IsStrictUntilInitialized) {
  begin();
  EXPECT_THAT(ask(R"({"jsonrpc":"2.0","id":1,"method":"tools/list"})"),
              ElementsAre(error("1", -32600, "Invalid Request: Server is not initialized")));
  EXPECT_THAT(ask(R"({"jsonrpc":"2.0","id":1,"method":"ping"})"), ElementsAre(HasSubstr(R"("result":{})")));
  EXPECT_THAT(ask(R"({"jsonrpc":"2.0","id":1,"method":"initialize"})"),
              ElementsAre(error("1", -32602, "Invalid params: Missing required params field")));
}

TEST_F(Session, HookMayFailTheHandshake) {
  const auto lenient = Server::make({.name = "n", .version = "v"}, {}, ServerConfiguration::lenient());
  lenient->start(transport, [](const Value&, const Value&) { throw MCPError::invalidRequest("no"); });
  EXPECT_THAT(ask(hello), ElementsAre(error("0", -32600, "Invalid Request: no")));
  EXPECT_FALSE(lenient->isInitialized());
  EXPECT_THAT(ask(R"({"jsonrpc":"2.0","id":1,"method":"x"})"), ElementsAre(HasSubstr("-32601")));
}

TEST_F(Session, HoldsNoticesBackUntilTheClientIsReady) {
  const std::string changed = R"({"jsonrpc":"2.0","method":"notifications/tools/list_changed"})";
  begin();
  addTool("a", nullptr);
  EXPECT_THAT(ask(hello), ElementsAre(HasSubstr("serverInfo")));
  addTool("b", nullptr);
  EXPECT_THAT(ask(R"({"jsonrpc":"2.0","id":1,"method":"ping"})"),
              ElementsAre(changed, HasSubstr(R"("result":{})")));
  server.toolRegistry().remove("a");
  EXPECT_THAT(transport.take(), ElementsAre(changed));
  {
    const ChangeNotice::Batch batch(server.toolRegistry().notice());
    server.toolRegistry().remove("b");
    addTool("c", nullptr);
  }
  EXPECT_THAT(transport.take(), ElementsAre(changed));
  EXPECT_FALSE(server.toolRegistry().remove("b"));
  EXPECT_THAT(transport.take(), IsEmpty());
}

TEST_F(Session, SendsLogMessagesFromTheLevelThatTheClientSets) {
  initialize();
  session->log(LogLevel::error, "before");
  ask(R"({"jsonrpc":"2.0","id":1,"method":"logging/setLevel","params":{"level":"notice"}})");
  session->log(LogLevel::info, "below");
  session->log(LogLevel::notice, "at", {{"key", "value"}});
  EXPECT_THAT(transport.take(),
              ElementsAre(R"({"jsonrpc":"2.0","method":"notifications/message","params":{"data":)"
                          R"({"key":"value","message":"at"},"level":"notice","logger":"mcp.server"}})"));
}

class SlowCalls : public Session {
 protected:
  void SetUp() override {
    addTool("slow", [this](const auto&, const ToolCallPtr& call) {
      call->request().onCancelled([this] { ++cancelled; });
      calls.push_back(call);
    });
    initialize();
  }
  static std::string callLine(const std::string& id, const std::string& meta = "{}") {
    return R"({"jsonrpc":"2.0","id":)" + id + R"(,"method":"tools/call","params":{"name":"slow","_meta":)" +
           meta + "}}";
  }

  std::vector<ToolCallPtr> calls;
  int cancelled = 0;
};

TEST_F(SlowCalls, AreAnsweredInTheOrderOfTheirResults) {
  EXPECT_THAT(ask(callLine("1")), IsEmpty());
  EXPECT_THAT(ask(callLine("2")), IsEmpty());
  EXPECT_THAT(ask(callLine("3")), IsEmpty());
  calls[1]->answerText("second \"\n");
  calls[2]->answerText("third");
  calls[0]->fail("first");
  EXPECT_THAT(
      transport.take(),
      ElementsAre(
          R"({"id":2,"jsonrpc":"2.0","result":{"content":[{"text":"second \"\n","type":"text"}]}})",
          R"({"id":3,"jsonrpc":"2.0","result":{"content":[{"text":"third","type":"text"}]}})",
          R"({"id":1,"jsonrpc":"2.0","result":{"content":[{"text":"first","type":"text"}],"isError":true}})"));
}

TEST_F(SlowCalls, AreNeverAnsweredOnceCancelled) {
  ask(callLine("1"));
  ask("[" + callLine("2") + "," + callLine("3") + "]");
  ask(R"({"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":1}})");
  ask(R"({"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":2}})");
  EXPECT_EQ(cancelled, 2);
  calls[0]->answerText("late");
  calls[1]->fail("late");
  calls[2]->answerText("in time");
  calls.clear();
  EXPECT_THAT(
      transport.take(),
      ElementsAre(R"([{"id":3,"jsonrpc":"2.0","result":{"content":[{"text":"in time","type":"text"}]}}])"));
}

TEST_F(SlowCalls, LogOnceThatACancelledOneGetsNoResponse) {
  const auto logged = [](const std::string& text) {
    return HasSubstr(R"("data":{"id":"1","message":")" + text + ", suppressing response\"}");
  };
  for (const char* outcome : {"dropped", "answered", "failed"}) {
    ask(callLine("1"));
    ask(R"({"jsonrpc":"2.0","id":2,"method":"logging/setLevel","params":{"level":"debug"}})");
    ask(R"({"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":1}})");
    const bool failed = outcome == std::string("failed");
    if (outcome == std::string("answered")) calls[0]->answerText("late");
    if (failed) calls[0]->request().fail(MCPError::internalError());
    calls.clear();
    EXPECT_THAT(transport.take(),
                ElementsAre(logged(failed ? "Request cancelled during error handling" : "Request cancelled")))
        << outcome;
  }
}

TEST_F(SlowCalls, ReportProgressWhereTheClientAsks) {
  ask(callLine("1", R"({"progressToken":"p"})"));
  ask(callLine("2"));
  for (const auto& call : calls) call->request().reportProgress(1, 5.0, "waiting");
  EXPECT_THAT(transport.take(),
              ElementsAre(R"({"jsonrpc":"2.0","method":"notifications/progress","params":)"
                          R"({"message":"waiting","progress":1.0,"progressToken":"p","total":5.0}})"));
}

TEST_F(SlowCalls, AreWaitedForAtTheEndOfInput) {
  bool ended = false;
  bool idle = false;
  session->onInputEnded([&](std::error_code) { ended = true; });
  ask(callLine("1"));
  transport.endInput();
  EXPECT_TRUE(ended);
  session->whenIdle([&] { idle = true; });
  EXPECT_FALSE(idle);
  calls[0]->answerText("last");
  EXPECT_TRUE(idle);
  EXPECT_THAT(transport.take(), ElementsAre(HasSubstr("last")));
}

TEST_F(SlowCalls, EndWithTheSession) {
  ask(callLine("1"));
  session->stop();
  EXPECT_TRUE(transport.disconnected);
  EXPECT_EQ(cancelled, 1);
  EXPECT_THAT(transport.take(), IsEmpty());
}

TEST_F(Session, ToolFailuresAreResultsThatTheModelCanRead) {
  addTool("throws", [](const auto&, const auto&) { throw std::runtime_error("no such row"); });
  const auto typed =
      addTool("typed", [](const auto&, const ToolCallPtr& call) { call->answerText("plain"); });
  typed->definition_.outputSchema = Value::Object{{"type", "object"}};
  initialize();
  EXPECT_THAT(
      ask(R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"throws","arguments":null}})"),
      ElementsAre(HasSubstr(R"("content":[{"text":"no such row","type":"text"}],"isError":true)")));
  EXPECT_THAT(
      ask(R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"typed"}})"),
      ElementsAre(
          error("1", -32602,
                "Invalid params: Tool 'typed' has an output schema but no structured content was provided")));
}

TEST_F(Session, ReadsResources) {
  const auto echo = [](const ResourceReadPtr& read) {
    read->answer(
        {.uri = read->uri(), .mimeType = "text/plain", .text = read->variable("name").value_or("none")});
  };
  server.registerResource("r://fixed/a", {.name = "fixed"}, echo);
  server.registerResourceTemplate("r://fixed/{name}", {.name = "any"}, echo);
  server.registerResource("r://broken", {.name = "broken"},
                          [](const auto&) { throw std::runtime_error("gone"); });
  server.registerResource("r://bytes", {.name = "bytes"}, [](const auto& read) {
    read->answer({.uri = read->uri(), .mimeType = {}, .text = "hi", .isBlob = true});
  });
  initialize();
  const std::pair<const char*, const char*> rows[] = {
      {"r://fixed/a",
       R"("result":{"contents":[{"mimeType":"text/plain","text":"none","uri":"r://fixed/a"}]})"},
      {"r://fixed/b%20c", R"([{"mimeType":"text/plain","text":"b c","uri":"r://fixed/b%20c"}])"},
      {"r://bytes", R"([{"blob":"aGk=","uri":"r://bytes"}])"},
      {"r://broken",
       R"({"code":-32603,"message":"Internal error: Error reading resource r://broken: gone"})"},
      {"r://fixed/b/c", R"({"code":-32002,"message":"Resource not found: r://fixed/b/c"})"},
  };
  for (const auto& [uri, expected] : rows) {
    EXPECT_THAT(ask(R"({"jsonrpc":"2.0","id":1,"method":"resources/read","params":{"uri":")" +
                    std::string(uri) + "\"}}"),
                ElementsAre(HasSubstr(expected)));
  }
  EXPECT_THAT(
      ask(R"({"jsonrpc":"2.0","id":1,"method":"resources/templates/list"})"),
      ElementsAre(HasSubstr(R"("resourceTemplates":[{"name":"any","uriTemplate":"r://fixed/{name}"}])")));
}

}  // namespace
}  // namespace vell::mcp::tests
