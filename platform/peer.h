#pragma once

namespace vell::platform {

/// Whether the process at the other end of a connected Unix-domain socket runs as the same user as this one.
/// False where the system cannot tell.
bool peerIsCurrentUser(int socket);

}  // namespace vell::platform
