#include "ipc/vell_client.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "ipc/message.h"
#include "platform/container.h"
#include "platform/socket.h"

namespace vell::ipc {

platform::Descriptor connectToApplication(const std::string& socketPath, bool blocking) {
  platform::Descriptor socket = platform::openStreamSocket();
  if (!socket) throw ClientError::socketCreate(errno);
  const auto address = platform::socketAddress(socketPath);
  if (!address) throw ClientError::pathTooLong(socketPath);
  if (!blocking) ::fcntl(socket.get(), F_SETFL, O_NONBLOCK);
  if (platform::connectSocket(socket.get(), *address) == 0) return socket;
  throw ClientError::connect(errno, socketPath);
}

std::string VellClient::resolveSocketPath() { return platform::applicationSocketPath(); }

VellClient::VellClient(const std::string& socketPath) : socket_(connectToApplication(socketPath)) {}

Answer VellClient::request(std::string_view method, const std::string& params) {
  send(method, params);
  json::LineFraming arrived;
  for (;;) {
    if (auto answer = Answer::parse(readLine(arrived))) return std::move(*answer);
  }
}

void VellClient::send(std::string_view method, const std::string& params) {
  constexpr std::chrono::seconds patience(1);
  if (tellSlow_) slowAt_ = std::chrono::steady_clock::now() + patience;
  writeAll(requestLine(nextId_++, method, params));
}

std::string VellClient::call(std::string_view method, const std::string& params) {
  return request(method, params).bytes();
}

void VellClient::subscribe(std::string_view method, const std::string& params, const EventHandler& onEvent) {
  send(method, params);
  json::LineFraming arrived;
  for (;;) {
    const auto event = Notification::parse(readLine(arrived));
    if (!event) continue;
    slowAt_.reset();
    onEvent(event->params());
    if (event->closesSubscription()) return;
  }
}

json::Text VellClient::readLine(json::LineFraming& arrived) {
  for (;;) {
    if (auto line = arrived.next()) return std::move(*line);
    const json::LineFraming::Room room = arrived.room();
    tellIfSlow();
    const ssize_t count = ::read(socket_.get(), room.data, room.size);
    if (count <= 0) break;
    arrived.commit(static_cast<std::size_t>(count));
  }
  if (auto last = arrived.finish()) return std::move(*last);
  throw ClientError::connectionClosed();
}

// Without a handler nothing is asked of the clock or the system.
void VellClient::tellIfSlow() {
  if (!slowAt_) return;
  const auto left = *slowAt_ - std::chrono::steady_clock::now();
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(left);
  if (platform::waitUntilReadable(socket_.get(), wait)) return;
  slowAt_.reset();
  tellSlow_();
}

void VellClient::writeAll(std::string_view bytes) {
  if (!platform::writeAll(socket_.get(), bytes, platform::writeSocket)) throw ClientError::writeFailed(errno);
}

Answer ReconnectingClient::request(std::string_view method, const std::string& params) {
  try {
    if (!client_) client_.emplace().whenSlow(tellSlow_);
    return client_->request(method, params);
  } catch (const ClientError& error) {
    if (error.endsConnection()) client_.reset();
    throw;
  }
}

}  // namespace vell::ipc
