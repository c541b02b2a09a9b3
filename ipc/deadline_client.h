#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ipc/application.h"
#include "json/line_framing.h"
#include "platform/descriptor.h"

namespace vell::ipc {

/// A connection all of whose calls together end at a deadline. It is made by the first call; a call that
/// comes to no answer in time throws ClientError.
class DeadlineClient : public Application {
 public:
  explicit DeadlineClient(std::chrono::milliseconds patience)
      : deadline_(std::chrono::steady_clock::now() + patience) {}

  using Application::request;
  Answer request(std::string_view method, const std::string& params) override;

 private:
  void send(const std::string& line);
  json::Text readLine();
  void awaitInput() const;

  std::chrono::steady_clock::time_point deadline_;
  platform::Descriptor socket_;
  json::LineFraming arrived_;
  std::int64_t nextId_ = 1;
};

}  // namespace vell::ipc
