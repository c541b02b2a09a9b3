#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <asio/io_context.hpp>
#include <csignal>
#include <cstdio>
#include <thread>

#include "mcp/stdio_transport.h"

namespace vell::mcp {
namespace {

std::string readAll(int descriptor) {
  std::string all;
  std::array<char, 4096> chunk;
  for (ssize_t count = 0; (count = ::read(descriptor, chunk.data(), chunk.size())) > 0;) {
    all.append(chunk.data(), static_cast<std::size_t>(count));
  }
  return all;
}

/// A transport between two pipes, which ends at the end of its input.
class Stdio : public ::testing::Test {
 protected:
  void SetUp() override {
    std::signal(SIGPIPE, SIG_IGN);
    ASSERT_EQ(::pipe(in_.data()), 0);
    ASSERT_EQ(::pipe(out_.data()), 0);
  }
  void TearDown() override {
    for (const int descriptor : {in_[0], in_[1], out_[0], out_[1]}) ::close(descriptor);
  }

  void write(std::string_view bytes) {
    ASSERT_EQ(::write(in_[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  void closeInput() { ::close(std::exchange(in_[1], -1)); }

  /// Runs until input ends; what `onMessage` does with the transport happens on the way.
  void run(int input, std::function<void(StdioTransport&, std::string_view)> onMessage) {
    asio::io_context loop;
    StdioTransport transport(loop, input, out_[1]);
    transport.connect({[&](std::string_view message) { onMessage(transport, message); },
                       [&](std::error_code error) {
                         error_ = error;
                         transport.whenWritten([&] { transport.disconnect(); });
                       }});
    loop.run();
    ::close(std::exchange(out_[1], -1));
  }

  std::array<int, 2> in_{};
  std::array<int, 2> out_{};
  std::error_code error_;
};

TEST_F(Stdio, DeliversWholeLines) {
  const std::string large(10'000, 'x');
  const std::pair<std::string, std::vector<std::string>> rows[] = {
      {"{\"a\":1}\r\n\n\r\n{\"b\":2}\n", {"{\"a\":1}", "{\"b\":2}"}},
      {"a\r\r\n", {"a\r"}},
      {large + "\n" + large + "\n", {large, large}},
      {"1\n2", {"1"}},
      {std::string("\0\xff\n", 3), {std::string("\0\xff", 2)}},
  };
  for (const auto& [input, expected] : rows) {
    TearDown();
    SetUp();
    write(input);
    closeInput();
    std::vector<std::string> messages;
    run(in_[0], [&](StdioTransport&, std::string_view message) { messages.emplace_back(message); });
    EXPECT_EQ(messages, expected) << input.substr(0, 20);
  }
}

TEST_F(Stdio, WritesEveryMessageWithOneLineFeed) {
  write("a\nb\n");
  closeInput();
  run(in_[0], [](StdioTransport& transport, std::string_view message) {
    transport.send(std::string(message) + "!");
  });
  EXPECT_EQ(readAll(out_[0]), "a!\nb!\n");
  EXPECT_FALSE(error_);
}

TEST_F(Stdio, ReadsFilesToo) {
  for (const auto& [content, expected] : {std::pair("x\ny\nlost", "x\ny\n"), std::pair("", "")}) {
    std::FILE* file = std::tmpfile();
    std::fputs(content, file);
    std::rewind(file);
    SetUp();
    run(::fileno(file),
        [](StdioTransport& transport, std::string_view message) { transport.send(std::string(message)); });
    EXPECT_EQ(readAll(out_[0]), expected);
    std::fclose(file);
  }
}

TEST_F(Stdio, LosesNothingWhenTheReaderIsSlow) {
  const std::string large(3'000'000, 'x');
  write("go\n");
  closeInput();
  std::string received;
  std::thread reader([&] { received = readAll(out_[0]); });
  run(in_[0], [&](StdioTransport& transport, std::string_view) {
    for (const char* end : {"1", "2", "3"}) transport.send(large + end);
  });
  reader.join();
  EXPECT_EQ(received, large + "1\n" + large + "2\n" + large + "3\n");
}

TEST_F(Stdio, EndsWhenItsReaderIsGone) {
  ::close(std::exchange(out_[0], -1));
  write("a\n");
  run(in_[0],
      [](StdioTransport& transport, std::string_view message) { transport.send(std::string(message)); });
  EXPECT_EQ(error_, std::errc::broken_pipe);
}

TEST_F(Stdio, GivesTheDescriptorsTheirFlagsBack) {
  std::array<int, 2> pair{};
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, pair.data()), 0);
  const int sameFile = ::dup(pair[0]);
  asio::io_context loop;
  {
    StdioTransport transport(loop, pair[0], sameFile);
    transport.connect({});
    EXPECT_TRUE(::fcntl(pair[0], F_GETFL) & O_NONBLOCK);
    transport.disconnect();
    EXPECT_FALSE(::fcntl(pair[0], F_GETFL) & O_NONBLOCK);
    transport.connect({});
  }
  EXPECT_FALSE(::fcntl(pair[0], F_GETFL) & O_NONBLOCK);
  for (const int descriptor : {pair[0], pair[1], sameFile}) ::close(descriptor);
}

TEST_F(Stdio, RefusesToSendWhileDisconnectedAndToConnectToNothing) {
  asio::io_context loop;
  StdioTransport transport(loop, in_[0], out_[1]);
  try {
    transport.send("x");
    FAIL();
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::errc::not_connected);
  }
  StdioTransport nowhere(loop, -1, out_[1]);
  EXPECT_THROW(nowhere.connect({}), std::system_error);
  EXPECT_FALSE(::fcntl(out_[1], F_GETFL) & O_NONBLOCK);
}

}  // namespace
}  // namespace vell::mcp
