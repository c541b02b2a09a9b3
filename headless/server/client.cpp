#include "headless/server/client.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>

#include "platform/socket.h"

namespace vell::headless {
namespace {

bool wouldBlock(int error) { return error == EAGAIN || error == EWOULDBLOCK || error == EINTR; }

}  // namespace

short Client::interest() const {
  const bool reads = !ended_ && !lines_.hasLine() && backlog_ < backlogLimit;
  return static_cast<short>((reads ? POLLIN : 0) | (output_.empty() ? 0 : POLLOUT));
}

void Client::receive() {
  std::array<char, 256 << 10> chunk;
  while (!ended_ && !broken_ && !lines_.hasLine() && !overlong()) {
    const ssize_t count = recv(descriptor(), chunk.data(), chunk.size(), 0);
    if (count < 0) {
      broken_ = !wouldBlock(errno);
      return;
    }
    lastMoved_ = Clock::now();
    lines_.append({chunk.data(), static_cast<std::size_t>(count)});
    if (count == 0) {
      ended_ = true;
      lines_.end();
    }
  }
}

void Client::flush() {
  while (!output_.empty() && !broken_) {
    const std::string& front = output_.front();
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

void Client::send(std::string bytes) {
  if (bytes.empty() || broken_) return;
  if (output_.empty()) lastMoved_ = Clock::now();
  backlog_ += bytes.size();
  output_.push_back(std::move(bytes));
}

void Client::finishInput() {
  lines_.clear();
  ended_ = true;
}

}  // namespace vell::headless
