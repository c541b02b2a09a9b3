#pragma once

#include <string>
#include <string_view>
#include <thread>

#include "headless/server/application_socket.h"
#include "headless/server/event_loop.h"
#include "headless/server/server.h"
#include "platform/descriptor.h"
#include "tests/support/temporary_directory.h"

namespace vell::headless {

/// A client of the application's socket that waits for what it expects, at most a minute.
class TestClient {
 public:
  /// Waits for somebody to serve the socket.
  explicit TestClient(const std::string& socketPath);

  void send(std::string_view bytes) const;
  void endInput() const;
  /// The next line, without its line feed; "<end>" at the end of the stream.
  std::string line();
  /// Whether a line or the end of the stream has come.
  bool hasNews() const;
  /// Sends the request line and returns the answer's.
  std::string ask(std::string_view request);

 private:
  platform::Descriptor socket_;
  std::string received_;
};

/// The application and its server on a thread of their own, in a home directory of their own.
class RunningServer {
 public:
  explicit RunningServer(ServerLimits limits = {});
  ~RunningServer();

  const tests::TemporaryHome& home() const { return home_; }
  TestClient client() const { return TestClient(socketPath_); }
  /// Writes a file into the home directory and has it opened.
  void open(const std::string& name, std::string_view content);

 private:
  tests::TemporaryHome home_;
  std::string socketPath_;
  platform::Descriptor quitRead_;
  platform::Descriptor quitWrite_;
  std::thread thread_;
};

}  // namespace vell::headless
