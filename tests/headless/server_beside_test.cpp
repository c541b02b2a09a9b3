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

/// One request at a time may run beside the loop here, so the second script also shows that the first was
/// given up.
TEST(Beside, OthersAreServedWhileAScriptRunsAndAfterItsClientLeft) {
  ServerLimits limits;
  limits.jobs = 2;  // the script's, and that of a request which finds the outline being saved
  RunningServer server(limits);
  server.open("groceries.json", groceries);
  TestClient steady = server.client();
  const auto count = [&](std::string_view text) {
    const std::string all = steady.ask(request("outline.get", R"({"shape":"flat","rows":true})"));
    std::size_t found = 0;
    for (std::size_t at = all.find(text); at != all.npos; at = all.find(text, at + 1)) ++found;
    return found;
  };
  std::size_t begun = 0;
  for (const char* source : {"for (;;) {}", "for (;;) await null"}) {
    TestClient busy = server.client();
    busy.send(
        script("async () => { vell.frontmostOutline.createRow('begun'); " + std::string(source) + " }") +
        "\n");
    ++begun;
    while (count("begun") < begun) usleep(1000);
    EXPECT_EQ(steady.ask(request("row.create", R"({"markdown":"meanwhile"})")).find("error"),
              std::string::npos);
    EXPECT_FALSE(busy.hasNews()) << source;
  }
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
