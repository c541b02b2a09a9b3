#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>

#include "json/line_framing.h"
#include "platform/descriptor.h"

namespace vell::headless {

/// One connected client: reads request lines and writes answer lines without ever blocking.
///
/// Memory stays bounded: a line may not exceed `lineLimit`, and while `backlogLimit` bytes or more wait for
/// the client nothing is read from it, so that at most one answer comes on top of that.
class Client {
 public:
  using Clock = std::chrono::steady_clock;

  static constexpr std::size_t lineLimit = 64 << 20;
  static constexpr std::size_t backlogLimit = 1 << 20;
  static constexpr std::size_t flushTurn = 256 << 10;
  static constexpr std::size_t receiveTurn = 1 << 20;

  /// The socket must not block.
  Client(std::uint64_t id, platform::Descriptor socket) : id_(id), socket_(std::move(socket)) {}

  std::uint64_t id() const { return id_; }
  int descriptor() const { return socket_.get(); }
  /// What to poll for.
  short interest() const;

  /// Reads what has come, up to the next request, and about `receiveTurn` bytes so that others get their
  /// turn.
  void receive();
  /// Writes what the client takes without waiting, up to `flushTurn` bytes so that others get their turn.
  void flush();
  /// Queues bytes, which must make whole lines in the end.
  void send(std::string bytes) { send(std::make_shared<const std::string>(std::move(bytes))); }
  void send(std::shared_ptr<const std::string> bytes);

  /// A request may be taken now: the one before is answered, and there is room for the next answer.
  bool hasRequest() const { return request_ && !job_ && (left_ || backlog_ < backlogLimit); }
  /// Takes the request line; only while `hasRequest`.
  json::Text takeRequest();
  /// The line being received is longer than any request may be.
  bool overlong() const { return lines_.pending() > lineLimit && !request_; }
  /// Drops requests not yet taken and reads no more.
  void finishInput();

  /// The job that works on the client's request; none while there is none.
  void setJob(std::optional<std::uint64_t> job) {
    job_ = job;
    if (!job) atWork_ = 0;
  }
  const std::optional<std::uint64_t>& job() const { return job_; }

  /// Keeps a subscriber connected although its input has ended.
  void keepOpen(bool keep) { kept_ = keep; }
  /// The connection is lost, or the client has ended its input and got all its answers.
  bool done() const {
    if (left_) return !job_ && !request_;
    return broken_ || (ended_ && !kept_ && !job_ && !request_ && output_.empty());
  }
  void markBroken() { broken_ = true; }
  /// Nobody reads its answers any more; what it asked for is still carried out.
  void markLeft() { left_ = true; }
  bool hasLeft() const { return left_; }

  std::size_t backlog() const { return backlog_; }
  /// The bytes of requests that came and are not answered.
  std::size_t received() const {
    return lines_.pending() + (request_ ? request_->view().size() : 0) + atWork_;
  }
  bool idle() const { return output_.empty() && !kept_ && !job_; }
  /// When bytes last moved in either direction.
  Clock::time_point lastMoved() const { return lastMoved_; }

 private:
  void findRequest();

  std::uint64_t id_;
  platform::Descriptor socket_;
  json::LineFraming lines_;
  std::optional<json::Text> request_;  // the next one
  std::optional<std::uint64_t> job_;
  std::size_t atWork_ = 0;  // bytes of the request that was taken, until its job ends
  std::deque<std::shared_ptr<const std::string>> output_;
  std::size_t taken_ = 0;  // bytes of the first output that are written
  std::size_t backlog_ = 0;
  bool ended_ = false;
  bool broken_ = false;
  bool left_ = false;
  bool kept_ = false;
  Clock::time_point lastMoved_ = Clock::now();
};

}  // namespace vell::headless
