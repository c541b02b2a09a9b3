#include "ipc/deadline_client.h"

#include <unistd.h>

#include <cerrno>

#include "ipc/vell_client.h"
#include "platform/socket.h"

namespace vell::ipc {

Answer DeadlineClient::request(std::string_view method, const std::string& params) {
  if (!socket_) socket_ = connectToApplication(VellClient::resolveSocketPath(), false);
  send(requestLine(nextId_++, method, params));
  for (;;) {
    if (auto answer = Answer::parse(readLine())) return std::move(*answer);
  }
}

/// In one write: what the system does not take at once would have to be waited for.
void DeadlineClient::send(const std::string& line) {
  const ssize_t count = platform::writeSocket(socket_.get(), line.data(), line.size());
  if (count != static_cast<ssize_t>(line.size())) throw ClientError::writeFailed(count < 0 ? errno : EAGAIN);
}

json::Text DeadlineClient::readLine() {
  for (;;) {
    if (auto line = arrived_.next()) return std::move(*line);
    awaitInput();
    const json::LineFraming::Room room = arrived_.room();
    const ssize_t count = ::read(socket_.get(), room.data, room.size);
    if (count > 0) {
      arrived_.commit(static_cast<std::size_t>(count));
    } else if (count == 0 || (errno != EINTR && errno != EAGAIN)) {
      throw ClientError::connectionClosed();
    }
  }
}

void DeadlineClient::awaitInput() const {
  const auto left =
      std::chrono::duration_cast<std::chrono::milliseconds>(deadline_ - std::chrono::steady_clock::now());
  if (!platform::waitUntilReadable(socket_.get(), left)) throw ClientError::connectionClosed();
}

}  // namespace vell::ipc
