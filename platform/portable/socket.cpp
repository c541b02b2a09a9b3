#include "platform/socket.h"

#include <fcntl.h>
#include <unistd.h>

namespace vell::platform {

ssize_t writeSocket(int socket, const char* data, std::size_t size) {
  return ::send(socket, data, size, MSG_NOSIGNAL);
}

void prepareSocket(int socket) { ::fcntl(socket, F_SETFD, FD_CLOEXEC); }

bool peerIsCurrentUser(int socket) {
  ucred peer{};
  socklen_t size = sizeof peer;
  return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::geteuid();
}

}  // namespace vell::platform
