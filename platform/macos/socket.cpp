#include "platform/socket.h"

#include <fcntl.h>
#include <unistd.h>

namespace vell::platform {

ssize_t writeSocket(int socket, const char* data, std::size_t size) { return ::write(socket, data, size); }

void prepareSocket(int socket) {
  ::fcntl(socket, F_SETFD, FD_CLOEXEC);
  const int on = 1;
  ::setsockopt(socket, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
  // The system's default is 8 KB: a large answer would go in hundreds of turns.
  const int bytes = 256 * 1024;
  ::setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &bytes, sizeof bytes);
  ::setsockopt(socket, SOL_SOCKET, SO_RCVBUF, &bytes, sizeof bytes);
}

bool peerIsCurrentUser(int socket) {
  uid_t user = 0;
  gid_t group = 0;
  return ::getpeereid(socket, &user, &group) == 0 && user == ::geteuid();
}

}  // namespace vell::platform
