#include "ipc/vell_client.h"

#include <unistd.h>

#include <cerrno>

#include "ipc/connect.h"
#include "ipc/message.h"
#include "ipc/notification.h"
#include "platform/container.h"
#include "platform/socket.h"

namespace vell::ipc {

std::string VellClient::resolveSocketPath() { return platform::applicationSocketPath(); }

VellClient::VellClient(const std::string& socketPath) : socket_(connectToApplication(socketPath)) {}

Answer VellClient::request(std::string_view method, const std::string& params) {
  writeAll(requestLine(nextId_++, method, params));
  LineFraming arrived;
  for (;;) {
    if (auto answer = Answer::parse(readLine(arrived))) return std::move(*answer);
  }
}

std::string VellClient::call(std::string_view method, const std::string& params) {
  return request(method, params).bytes();
}

void VellClient::subscribe(std::string_view method, const std::string& params, const EventHandler& onEvent) {
  writeAll(requestLine(nextId_++, method, params));
  LineFraming arrived;
  for (;;) {
    const auto event = Notification::parse(readLine(arrived));
    if (!event) continue;
    onEvent(event->params());
    if (event->closesSubscription()) return;
  }
}

json::Text VellClient::readLine(LineFraming& arrived) {
  for (;;) {
    if (auto line = arrived.next()) return std::move(*line);
    const LineFraming::Room room = arrived.room();
    const ssize_t count = ::read(socket_.get(), room.data, room.size);
    if (count <= 0) break;
    arrived.commit(static_cast<std::size_t>(count));
  }
  if (auto last = arrived.finish()) return std::move(*last);
  throw ClientError::connectionClosed();
}

void VellClient::writeAll(std::string_view bytes) {
  if (!platform::writeAll(socket_.get(), bytes, platform::writeSocket)) throw ClientError::writeFailed(errno);
}

}  // namespace vell::ipc
