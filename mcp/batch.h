#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vell::mcp {

/// Gathers the responses to one batch and sends them as one array when the last place is filled;
/// nothing where no place held a response.
class Batch : public std::enable_shared_from_this<Batch> {
 public:
  explicit Batch(std::function<void(std::string line)> send) : send_(std::move(send)) {}
  ~Batch() {
    if (!responses_.empty()) send_("[" + responses_ + "]");
  }

  /// One message's place: filled by calling it or, without response, by dropping it.
  std::function<void(std::optional<std::string>)> place() {
    return [self = shared_from_this()](std::optional<std::string> response) {
      if (!response) return;
      if (!self->responses_.empty()) self->responses_ += ',';
      self->responses_ += *response;
    };
  }

 private:
  std::function<void(std::string)> send_;
  std::string responses_;
};

}  // namespace vell::mcp
