#include "platform/socket.h"

#include <cstring>

namespace vell::platform {

std::optional<sockaddr_un> socketAddress(const std::string& path) {
  if (path.size() + 1 > socketPathLimit) return std::nullopt;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  return address;
}

Descriptor openStreamSocket() {
  Descriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
  if (socket) prepareSocket(socket.get());
  return socket;
}

int connectSocket(int socket, const sockaddr_un& address) {
  return ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

}  // namespace vell::platform
