#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <thread>
#include <vector>

#include "json/writer.h"
#include "tests/headless/server_conversation.h"

namespace vell::headless {
namespace {

std::string request(const std::string& method, const std::string& params) {
  return R"({"id":1,"method":")" + method + R"(","params":)" + params + "}";
}

std::string script(const std::string& source) {
  return request("script.evaluate", R"({"script":)" + json::quoted(source) + "}");
}

std::string read(const std::string& path) {
  return request("outline.get", R"({"shape":"flat","rows":true,"rowRefs":[)" + json::quoted(path) + "]}");
}

std::size_t rowsIn(const std::string& answer) { return elements(at(answer, "result")).size(); }

/// One request at a time may run beside the loop.
ServerLimits oneJob() {
  ServerLimits limits;
  limits.jobs = 1;
  return limits;
}

/// The second script also shows that the first was given up.
TEST(Beside, OthersAreServedWhileAScriptRunsAndAfterItsClientLeft) {
  RunningServer server(oneJob());
  server.open("groceries.json", groceries);
  TestClient steady = server.client();
  const auto count = [&](std::string_view text) {
    const std::string all = steady.ask(request("outline.get", R"({"shape":"flat","rows":true})"));
    std::size_t found = 0;
    for (std::size_t at = all.find(text); at != all.npos; at = all.find(text, at + 1)) ++found;
    return found;
  };
  std::size_t begun = 0;
  for (const char* source : {"for (;;) {}", "for (;;) await null",
                             "for (;;) vell.frontmostOutline.row(2).setAttribute('at', Math.random())"}) {
    TestClient busy = server.client();
    busy.send(
        script("async () => { vell.frontmostOutline.createRow('begun'); " + std::string(source) + " }") +
        "\n");
    ++begun;
    while (count("begun") < begun) usleep(1000);
    for (int round = 0; round < 10; ++round) {
      EXPECT_EQ(steady.ask(request("row.create", R"({"markdown":"meanwhile"})")).find("error"),
                std::string::npos);
    }
    EXPECT_FALSE(busy.hasNews()) << source;
  }
}

TEST(Beside, EndlessScriptsLeaveAThreadToOthers) {
  ServerLimits limits;
  limits.jobs = 2;
  limits.scripts = 1;
  RunningServer server(limits);
  server.open("groceries.json", groceries);
  TestClient steady = server.client();
  const TestClient busy[] = {server.client(), server.client()};
  for (const TestClient& client : busy) client.send(script("for (;;) {}") + "\n");
  EXPECT_EQ(rowsIn(steady.ask(read("//task"))), 1U);
  for (const TestClient& client : busy) EXPECT_FALSE(client.hasNews());
}

/// Each script takes down the name of its client; the first of the greedy client waits until the other's is
/// there.
TEST(Beside, WhoSendsManyRequestsAheadGetsNoThreadBeforeThoseThatWait) {
  RunningServer server(oneJob());
  server.open("groceries.json", groceries);
  const auto named = [](const std::string& name) {
    return script("vell.frontmostOutline.createRow('" + name + "'); 0") + "\n";
  };
  TestClient greedy = server.client();
  TestClient modest = server.client();
  TestClient third = server.client();
  greedy.send(script("while (!vell.frontmostOutline.row('//* \"go\"')) {}") + "\n" + named("greedy") +
              named("greedy") + named("greedy"));
  modest.send(named("modest"));
  third.ask(request("row.create", R"({"markdown":"go"})"));
  for (int answers = 0; answers < 4; ++answers) greedy.line();
  EXPECT_EQ(at(third.ask(request("outline.get", R"({"format":"txt","rowRefs":["/*[2:]"]})")), "result"),
            R"("go\nmodest\ngreedy\ngreedy\ngreedy\n")");
}

/// Each client creates rows and reads them by paths, all at once; each must find all that it made.
TEST(Beside, ManyMayChangeAndReadAnOutlineAtOnce) {
  constexpr std::size_t clients = 6;
  constexpr std::size_t rounds = 40;
  RunningServer server;
  server.open("groceries.json", groceries);
  TestClient observer = server.client();
  observer.ask(request("outline.observe", R"({"path":"//task","rows":true,"format":"txt"})"));
  std::vector<std::thread> threads;
  for (std::size_t number = 0; number < clients; ++number) {
    threads.emplace_back([&server, path = "//task \"by " + std::to_string(number) + "\"", number] {
      const std::string place = json::quoted("//* \"Later\"");
      const std::string create = request(
          "row.create", R"({"markdown":"- [ ] by )" + std::to_string(number) + R"(","after":)" + place + "}");
      TestClient client = server.client();
      for (std::size_t round = 1; round <= rounds; ++round) {
        const std::string made = client.ask(create);
        ASSERT_EQ(made.find("error"), std::string::npos) << made;
        ASSERT_EQ(rowsIn(client.ask(read(path))), round);
        if (round % 10 != 0) continue;
        const std::string count =
            client.ask(script("vell.frontmostOutline.rows(" + json::quoted(path) + ").length"));
        ASSERT_EQ(at(count, "result"), std::to_string(round)) << count;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(rowsIn(server.client().ask(read("//task"))), clients * rounds + 1);
  EXPECT_TRUE(observer.hasNews());
}

}  // namespace
}  // namespace vell::headless
