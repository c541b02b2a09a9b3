#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "mcp/mcp_server.h"
#include "mcp/schema.h"
#include "mcp/value.h"

namespace vell::mcp {

inline void PrintTo(const Value& value, std::ostream* out) { *out << value.description(); }

}  // namespace vell::mcp

namespace vell::mcp::tests {

/// The near end of a session in memory: what is fed arrives at once, what is sent is kept.
class MemoryTransport : public Transport {
 public:
  const Logger& logger() const override { return logger_; }
  void connect(Receiver receiver) override { receiver_ = std::move(receiver); }
  void disconnect() override { disconnected = true; }
  void send(std::string message) override { sent.push_back(std::move(message)); }
  void whenWritten(std::function<void()> callback) override { callback(); }
  std::size_t unwritten() const override { return 0; }

  void feed(std::string_view line) { receiver_.onMessage(line); }
  void endInput() { receiver_.onEnd({}); }
  std::vector<std::string> take() { return std::exchange(sent, {}); }

  std::vector<std::string> sent;
  bool disconnected = false;

 private:
  Logger logger_{"test"};
  Receiver receiver_;
};

/// A tool that does what it is told to.
class TestTool : public Tool {
 public:
  using Action = std::function<void(const Value::Object&, const ToolCallPtr&)>;

  TestTool(std::string name, Value inputSchema, Action action) : action_(std::move(action)) {
    definition_.name = std::move(name);
    definition_.inputSchema = std::move(inputSchema);
  }
  const ToolDefinition& definition() const override { return definition_; }
  void call(const Value::Object& arguments, const ToolCallPtr& call) override { action_(arguments, call); }

  ToolDefinition definition_;

 private:
  Action action_;
};

/// A server with a session over a memory transport.
class Session : public ::testing::Test {
 protected:
  static constexpr const char* hello =
      R"({"jsonrpc":"2.0","id":0,"method":"initialize","params":{"protocolVersion":"2025-11-25"}})";

  void begin() { session = server.run(transport); }
  void initialize() {
    begin();
    transport.feed(hello);
    transport.feed(R"({"jsonrpc":"2.0","method":"notifications/initialized"})");
    transport.take();
  }
  std::vector<std::string> ask(std::string_view line) {
    transport.feed(line);
    return transport.take();
  }
  std::shared_ptr<TestTool> addTool(const std::string& name, TestTool::Action action) {
    auto tool = std::make_shared<TestTool>(name, schema::object({}, {}, true), std::move(action));
    server.registerTool(tool);
    return tool;
  }

  MCPServer server{ServerInfo{.name = "test", .version = "1"}};
  MemoryTransport transport;
  std::shared_ptr<Server> session;
};

}  // namespace vell::mcp::tests
