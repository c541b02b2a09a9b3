#pragma once

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "json/line_framing.h"
#include "mcp/value.h"
#include "tests/support/fake_application.h"
#include "tests/support/temporary_directory.h"
#include "tools/serve.h"

namespace vell::tools::tests {

/// An MCP host: a server on a thread, between two pipes, in a home of its own.
class Host {
 public:
  Host() {
    if (::pipe(in_.data()) != 0 || ::pipe(out_.data()) != 0) throw std::runtime_error("no pipes");
    server_ = std::thread([this] {
      serveMCP("1.2 (3)", in_[0], out_[1]);
      ::close(out_[1]);
    });
  }
  ~Host() {
    leave();
    server_.join();
    ::close(in_[0]);
    ::close(out_[0]);
  }

  void send(const std::string& line) {
    const std::string bytes = line + "\n";
    ASSERT_EQ(::write(in_[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  void initialize() {
    ask("initialize", R"({"protocolVersion":"2025-11-25"})");
    send(R"({"jsonrpc":"2.0","method":"notifications/initialized"})");
  }
  void leave() {
    if (in_[1] >= 0) ::close(std::exchange(in_[1], -1));
  }

  /// The next message; null at the end of output.
  mcp::Value next() {
    std::optional<json::Text> line;
    while (!(line = framing_.next())) {
      pollfd readable{out_[0], POLLIN, 0};
      if (::poll(&readable, 1, 20'000) != 1) throw std::runtime_error("the server says nothing");
      const auto room = framing_.room();
      const ssize_t count = ::read(out_[0], room.data, room.size);
      if (count <= 0) return nullptr;
      framing_.commit(static_cast<std::size_t>(count));
    }
    return mcp::decode(line->view());
  }

  int request(const std::string& method, const std::string& params) {
    send(R"({"jsonrpc":"2.0","id":)" + std::to_string(++lastId_) + R"(,"method":")" + method +
         R"(","params":)" + params + "}");
    return lastId_;
  }
  int requestTool(const std::string& name, const std::string& arguments) {
    return request("tools/call", R"({"name":")" + name + R"(","arguments":)" + arguments + "}");
  }
  /// The next message that is the answer to that request; what comes before is left out.
  mcp::Value answer(int id) {
    for (;;) {
      mcp::Value message = next();
      if (message.isNull()) throw std::runtime_error("the server has ended");
      if (const auto* answered = message.find("id"); answered && *answered == id) return message;
    }
  }
  mcp::Value ask(const std::string& method, const std::string& params = "{}") {
    return answer(request(method, params));
  }
  /// The text of a tool's or a resource's result, with "error: " before it where the tool's says so; the
  /// message of an error.
  static std::string textOf(const mcp::Value& answer) {
    if (const auto* error = answer.find("error")) return *error->find("message")->string();
    const mcp::Value& result = *answer.find("result");
    const mcp::Value* contents = result.find("contents");
    const mcp::Value& item = (contents ? contents : result.find("content"))->array()->front();
    return (result.find("isError") ? "error: " : "") + *item.find("text")->string();
  }
  std::string call(const std::string& name, const std::string& arguments) {
    return textOf(answer(requestTool(name, arguments)));
  }

 private:
  std::array<int, 2> in_{};
  std::array<int, 2> out_{};
  std::thread server_;
  json::LineFraming framing_;
  int lastId_ = 0;
};

}  // namespace vell::tools::tests
