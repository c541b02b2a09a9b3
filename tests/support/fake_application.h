#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/container.h"
#include "platform/descriptor.h"

namespace vell::tests {

/// An application that answers by a script, on a thread of its own, as many clients as come.
class FakeApplication {
 public:
  /// What is sent for one request, byte for byte, and whether the connection is closed behind it.
  struct Reply {
    std::string bytes;
    bool close = false;

    static Reply line(const std::string& json, bool close = false) { return {json + "\n", close}; }
  };
  using Script = std::function<Reply(const std::string& request)>;

  explicit FakeApplication(Script script, const std::string& socketPath = platform::applicationSocketPath());
  /// Answers every request so.
  explicit FakeApplication(const Reply& reply,
                           const std::string& socketPath = platform::applicationSocketPath())
      : FakeApplication([reply](const std::string&) { return reply; }, socketPath) {}
  /// Closes every connection and removes the socket.
  ~FakeApplication();
  FakeApplication(const FakeApplication&) = delete;
  FakeApplication& operator=(const FakeApplication&) = delete;

  /// The request lines so far, without their line feeds, in the order of their arrival.
  std::vector<std::string> requests() const;

  /// A response line with that result.
  static Reply result(const std::string& json) { return Reply::line(R"({"id":1,"result":)" + json + "}"); }
  static Reply error(int code, const std::string& message);

 private:
  void serve();
  bool answer(int client, std::string& pending);

  Script script_;
  std::string socketPath_;
  platform::Descriptor listener_;
  platform::Descriptor stopRead_;
  platform::Descriptor stopWrite_;
  mutable std::mutex mutex_;
  std::vector<std::string> requests_;
  std::thread thread_;
};

}  // namespace vell::tests
