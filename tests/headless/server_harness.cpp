#include "tests/headless/server_harness.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>

#include "headless/storage/application.h"
#include "json/writer.h"
#include "platform/container.h"

namespace vell::headless {
namespace {

constexpr int patience = 60'000;

void serveUntil(int quit, const std::string& socketPath, ServerLimits limits) {
  EventLoop loop;
  Application application(loop,
                          {platform::containerDirectory(), [](const std::string&) {}, "1.2", VELL_HEADLESS});
  auto socket = ApplicationSocket::claim(socketPath);
  Server server(loop, application, socket->descriptor(), limits);
  loop.watch(quit, POLLIN, [&](short) { loop.stop(); });
  loop.run();
}

}  // namespace

TestClient::TestClient(const std::string& socketPath) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(patience);
  while (!(socket_ = connectTo(socketPath)) && std::chrono::steady_clock::now() < end) usleep(1000);
}

void TestClient::send(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t count = ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (count < 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

void TestClient::endInput() const { shutdown(socket_.get(), SHUT_WR); }

std::string TestClient::line() {
  for (std::size_t scanned = 0;;) {
    const std::size_t lineFeed = received_.find('\n', scanned);
    scanned = received_.size();
    if (lineFeed != std::string::npos) {
      std::string line = received_.substr(0, lineFeed);
      received_.erase(0, lineFeed + 1);
      return line;
    }
    pollfd waiting{socket_.get(), POLLIN, 0};
    if (poll(&waiting, 1, patience) != 1) return "<nothing came>";
    std::array<char, 65536> chunk;
    const ssize_t count = recv(socket_.get(), chunk.data(), chunk.size(), 0);
    if (count <= 0) return "<end>";
    received_.append(chunk.data(), static_cast<std::size_t>(count));
  }
}

bool TestClient::hasNews() const {
  pollfd waiting{socket_.get(), POLLIN, 0};
  return !received_.empty() || poll(&waiting, 1, 0) == 1;
}

std::string TestClient::ask(std::string_view request) {
  send(std::string(request) + "\n");
  return line();
}

RunningServer::RunningServer(ServerLimits limits) : socketPath_(platform::applicationSocketPath()) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("pipe");
  quitRead_ = platform::Descriptor(ends[0]);
  quitWrite_ = platform::Descriptor(ends[1]);
  thread_ = std::thread(serveUntil, quitRead_.get(), socketPath_, limits);
}

RunningServer::~RunningServer() {
  quitWrite_ = platform::Descriptor();
  thread_.join();
}

void RunningServer::open(const std::string& name, std::string_view content) {
  const std::string path = home_.write(name, content);
  const std::string answer =
      client().ask(R"({"id":1,"method":"application.open","params":{"paths":[)" + json::quoted(path) + "]}}");
  EXPECT_EQ(answer.find("error"), std::string::npos) << answer;
}

}  // namespace vell::headless
