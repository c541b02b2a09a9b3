#include "platform/socket.h"

#include <fcntl.h>

#include <cstring>

namespace vell::platform {

// The two ways to write without a signal: per write, or once per socket.
#ifdef MSG_NOSIGNAL
static constexpr int writeFlags = MSG_NOSIGNAL;
#else
static constexpr int writeFlags = 0;
#endif

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

ssize_t writeSocket(int socket, const char* data, std::size_t size) {
  return ::send(socket, data, size, writeFlags);
}

void prepareSocket(int socket) {
  ::fcntl(socket, F_SETFD, FD_CLOEXEC);
#ifdef SO_NOSIGPIPE
  const int on = 1;
  ::setsockopt(socket, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
#endif
}

}  // namespace vell::platform
