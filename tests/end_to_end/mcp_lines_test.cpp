#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdio>
#include <memory>

#include "json/document.h"
#include "tests/end_to_end/application.h"

namespace vell::tests {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// `vell mcp` and a host that writes and reads raw lines.
class Host {
 public:
  explicit Host(const std::string& pipe) {
    const std::string in = pipe + ".in", out = pipe + ".out";
    EXPECT_EQ(mkfifo(in.c_str(), 0600) + mkfifo(out.c_str(), 0600), 0);
    const std::vector<std::string> command{"/bin/sh", "-c", "exec \"$0\" mcp <\"$1\" >\"$2\"", VELL, in, out};
    process_ = std::make_unique<Process>(command);
    input_ = std::fopen(in.c_str(), "we");
    output_ = std::fopen(out.c_str(), "re");
  }
  ~Host() { std::fclose(output_); }

  void write(const std::string& lines) const {
    EXPECT_EQ(std::fwrite(lines.data(), 1, lines.size(), input_), lines.size());
    std::fflush(input_);
  }

  /// The next answer, notices left out; nothing at the end of the output. Every line must be a message.
  std::string answer() const {
    std::string line;
    for (int byte = std::fgetc(output_); byte != EOF && byte != '\n'; byte = std::fgetc(output_)) {
      line += static_cast<char>(byte);
    }
    if (line.empty()) return line;
    const json::Document message{json::Text(line)};
    EXPECT_EQ(message.root().find("jsonrpc")->string(), "2.0") << line;
    return message.root().find("id") ? line : answer();
  }

  void endInput() const { std::fclose(input_); }
  Ended wait() const { return process_->wait(); }

 private:
  std::unique_ptr<Process> process_;
  std::FILE* input_;
  std::FILE* output_;
};

std::string message(const std::string& content) { return R"({"jsonrpc":"2.0",)" + content + "}\n"; }
std::string call(const std::string& id) {
  return message(R"("id":)" + id +
                 R"(,"method":"tools/call","params":{"name":"vell_get_outline","arguments":{"rows":true}})");
}

TEST(McpLines, OneSessionWhileTheApplicationComesAndGoes) {
  const TemporaryHome home;
  const auto samples = copySamples(home);
  const Host host(home / "mcp");
  const auto rows = AllOf(HasSubstr(R"({"content":[{"text":"[{)"), Not(HasSubstr("isError")));
  const auto cancel = R"("method":"notifications/cancelled","params":{"requestId":"gone"})";
  const struct {
    bool restarts;
    std::string lines;
    const char* id;
    testing::Matcher<std::string> answer;
  } steps[] = {
      {false, message(R"("id":0,"method":"initialize","params":{"protocolVersion":"2025-06-18"})"),
       R"("id":0,)", HasSubstr(R"("protocolVersion":"2025-06-18")")},
      {false, message(R"("id":"1","method":"tools/list")"), R"("id":"1",)",
       HasSubstr("vell_outline_path_check")},
      {false, call("2"), R"("id":2,)",
       AllOf(HasSubstr(R"("isError":true)"), HasSubstr("Vell.app must be running"))},
      {true, call("3"), R"("id":3,)", rows},
      {true, call("4"), R"("id":4,)", rows},
      {false, call("\"gone\"") + message(cancel) + call("5"), R"("id":5,)", rows},
      {false, "no message\n", R"("id":null,)", HasSubstr("-32700")},
  };
  std::unique_ptr<Application> application;
  for (const auto& step : steps) {
    if (step.restarts) application = nullptr, application = std::make_unique<Application>(samples);
    host.write(step.lines);
    EXPECT_THAT(host.answer(), AllOf(HasSubstr(step.id), step.answer));
  }
  host.write(call("6"));
  host.endInput();
  EXPECT_THAT(host.answer(), AllOf(HasSubstr(R"("id":6,)"), rows));
  EXPECT_EQ(host.answer(), "");
  EXPECT_EQ(host.wait().status, 0);
}

}  // namespace
}  // namespace vell::tests
