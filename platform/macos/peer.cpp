#include "platform/peer.h"

#include <sys/types.h>
#include <unistd.h>

namespace vell::platform {

bool peerIsCurrentUser(int socket) {
  uid_t user = 0;
  gid_t group = 0;
  return getpeereid(socket, &user, &group) == 0 && user == geteuid();
}

}  // namespace vell::platform
