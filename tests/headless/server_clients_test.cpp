#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/socket.h"
#include "tests/headless/server_harness.h"

namespace vell::headless {
namespace {

const std::string request = R"({"id":1,"method":"outline.list"})";
const std::string answer = R"({"id":1,"jsonrpc":"2.0","result":[]})";

/// What an application that was killed leaves behind.
void leaveStaleSocket(const std::string& path) {
  const platform::Descriptor socket = platform::openStreamSocket();
  const sockaddr_un address = *platform::socketAddress(path);
  ASSERT_EQ(bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
}

TEST(Clients, MaySendInPiecesAndManyAtOnce) {
  const RunningServer server;
  TestClient client = server.client();
  for (const char byte : request + "\n") client.send({&byte, 1});
  EXPECT_EQ(client.line(), answer);
  std::string many;
  for (int i = 0; i < 10'000; ++i) many += request + "\n";
  client.send(many);
  for (int i = 0; i < 10'000; ++i) ASSERT_EQ(client.line(), answer) << i;
}

TEST(Clients, GetTheirAnswersAfterTheyEndTheirInput) {
  const RunningServer server;
  TestClient client = server.client();
  client.send(request + "\n" + request);  // the last line lacks its line feed
  client.endInput();
  EXPECT_EQ(client.line(), answer);
  EXPECT_EQ(client.line(), answer);
  EXPECT_EQ(client.line(), "<end>");
}

TEST(Clients, ThatLeaveMidwayHarmNobody) {
  const RunningServer server;
  TestClient steady = server.client();
  for (int i = 0; i < 50; ++i) {
    const TestClient leaving = server.client();
    leaving.send(i % 2 == 0 ? request.substr(0, 9) : request + "\n");
  }
  EXPECT_EQ(steady.ask(request), answer);
}

TEST(Clients, ThatDoNotReadAreNotReadFromAndOthersAreServed) {
  const RunningServer server;
  const TestClient greedy = server.client();
  std::thread flood([&] {
    std::string many;
    for (int i = 0; i < 1000; ++i) many += request + "\n";
    for (int i = 0; i < 200; ++i) greedy.send(many);  // ends once the server has gone
  });
  {
    TestClient steady = server.client();
    for (int i = 0; i < 100; ++i) EXPECT_EQ(steady.ask(request), answer);
  }
  greedy.endInput();
  flood.join();
}

TEST(Clients, ThatTakeNothingAreDroppedInTheEnd) {
  ServerLimits limits;
  limits.stall = std::chrono::milliseconds(50);
  const RunningServer server(limits);
  const TestClient greedy = server.client();
  std::string many;
  for (int i = 0; i < 200'000; ++i) many += request + "\n";
  greedy.send(many);  // comes back only because the server closes
  EXPECT_EQ(server.client().ask(request), answer);
}

TEST(Clients, MayNotSendALineWithoutEnd) {
  const RunningServer server;
  TestClient client = server.client();
  const std::string piece(1 << 20, 'x');
  for (int i = 0; i < 66; ++i) client.send(piece);
  EXPECT_EQ(
      client.line(),
      R"({"error":{"code":-32600,"message":"A request may not be longer than 64 MiB."},"id":null,"jsonrpc":"2.0"})");
  EXPECT_EQ(client.line(), "<end>");
}

TEST(Clients, ThatSendTooMuchTogetherLoseTheOneWithTheMost) {
  ServerLimits limits;
  limits.received = 4 << 20;
  const RunningServer server(limits);
  const std::string piece(1 << 20, ' ');
  TestClient larger = server.client();
  for (int i = 0; i < 3; ++i) larger.send(piece);
  TestClient smaller = server.client();
  for (int i = 0; i < 2; ++i) smaller.send(piece);
  EXPECT_EQ(larger.line(), "<end>");
  EXPECT_EQ(smaller.ask(request), answer);
}

TEST(ApplicationSocket, ReplacesAStaleSocketAndNeverALiveOne) {
  const tests::TemporaryDirectory directory;
  const std::string path = directory / "s";
  leaveStaleSocket(path);
  auto live = ApplicationSocket::claim(path);
  ASSERT_TRUE(live);
  EXPECT_FALSE(ApplicationSocket::claim(path));
  EXPECT_TRUE(connectTo(path));
  live.reset();
  EXPECT_FALSE(connectTo(path));
}

}  // namespace
}  // namespace vell::headless
