#include "headless/server/client.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>

#include "platform/socket.h"

namespace vell::headless {
namespace {

bool wouldBlock(int error) { return error == EAGAIN || error == EWOULDBLOCK || error == EINTR; }

}  // namespace

short Client::interest() const {
  const bool reads = !ended_ && !request_ && backlog_ < backlogLimit;
  return static_cast<short>((reads ? POLLIN : 0) | (output_.empty() ? 0 : POLLOUT));
}

void Client::receive() {
  std::size_t received = 0;
  while (!ended_ && !broken_ && !request_ && !overlong() && received < receiveTurn) {
    const json::LineFraming::Room room = lines_.room();
    const ssize_t count = recv(descriptor(), room.data, room.size, 0);
    if (count < 0) {
      broken_ = !wouldBlock(errno);
      return;
    }
    lastMoved_ = Clock::now();
    lines_.commit(static_cast<std::size_t>(count));
    received += static_cast<std::size_t>(count);
    ended_ = count == 0;
    findRequest();
  }
}

/// The last line may lack its line feed.
void Client::findRequest() {
  request_ = lines_.next();
  if (!request_ && ended_) request_ = lines_.finish();
}

json::Text Client::takeRequest() {
  json::Text taken = std::move(*request_);
  atWork_ = taken.view().size();
  findRequest();
  return taken;
}

void Client::flush() {
  const std::size_t before = backlog_;
  while (!output_.empty() && !broken_ && before - backlog_ < flushTurn) {
    const std::string& front = *output_.front();
    const ssize_t count = platform::writeSocket(descriptor(), front.data() + taken_, front.size() - taken_);
    if (count < 0) {
      broken_ = !wouldBlock(errno);
      return;
    }
    lastMoved_ = Clock::now();
    taken_ += static_cast<std::size_t>(count);
    backlog_ -= static_cast<std::size_t>(count);
    if (taken_ < front.size()) continue;
    output_.pop_front();
    taken_ = 0;
  }
}

void Client::send(std::shared_ptr<const std::string> bytes) {
  if (bytes->empty() || broken_ || left_) return;
  if (output_.empty()) lastMoved_ = Clock::now();
  backlog_ += bytes->size();
  output_.push_back(std::move(bytes));
}

void Client::finishInput() {
  lines_ = {};
  request_.reset();
  ended_ = true;
}

}  // namespace vell::headless
