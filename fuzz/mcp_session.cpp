// Any bytes into a session: what comes out is JSON, one message a line, and nothing breaks.
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "json/line_framing.h"
#include "mcp/mcp_server.h"
#include "mcp/parameters.h"
#include "mcp/value.h"

namespace {

using namespace vell::mcp;

class QuietSink : public LogSink {
 public:
  bool accepts(LogLevel) const override { return false; }
  void write(const LogEntry&) override {}
};

class CheckingTransport : public Transport {
 public:
  const Logger& logger() const override { return logger_; }
  void connect(Receiver receiver) override { receiver_ = std::move(receiver); }
  void disconnect() override {}
  void send(std::string message) override {
    if (message.find('\n') != std::string::npos) std::abort();
    decode(message);  // throws for what is not JSON
  }
  void whenWritten(std::function<void()> callback) override { callback(); }
  std::size_t unwritten() const override { return 0; }

  Receiver receiver_;

 private:
  Logger logger_{"fuzz", std::make_shared<QuietSink>()};
};

struct Record {
  std::vector<std::string> texts;
  std::optional<std::map<std::string, std::optional<std::string>>> map;
  bool flag = false;
};

class EchoTool : public Tool {
 public:
  EchoTool() {
    definition_.name = "echo";
    definition_.inputSchema = parameters_.schema();
  }
  const ToolDefinition& definition() const override { return definition_; }
  void call(const Value::Object& arguments, const ToolCallPtr& call) override {
    std::string all;
    for (const std::string& text : parameters_.decode(arguments).texts) all += text;
    call->answerText(all);
  }

 private:
  const Parameters<Record> parameters_ = Parameters<Record>()
                                             .required("texts", &Record::texts, "")
                                             .optional("map", &Record::map, "")
                                             .optional("flag", &Record::flag, "");
  ToolDefinition definition_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  MCPServer server({.name = "fuzz", .version = "1"}, {}, Logger("fuzz", std::make_shared<QuietSink>()));
  server.registerTool(std::make_shared<EchoTool>());
  server.registerResourceTemplate("r://{name}/x", {.name = "r"}, [](const ResourceReadPtr& read) {
    read->answer({.uri = read->uri(), .text = read->variable("name").value_or("")});
  });
  CheckingTransport transport;
  const auto session = server.run(transport);
  const auto deliver = [&](std::string_view line) { transport.receiver_.onMessage(line); };
  deliver(R"({"jsonrpc":"2.0","id":0,"method":"initialize","params":{}})");
  vell::json::LineFraming framing;
  framing.feed({reinterpret_cast<const char*>(data), size});
  while (const auto line = framing.next()) deliver(line->view());
  session->stop();
  return 0;
}
