#pragma once

#include <sys/socket.h>
#include <sys/types.h>
#include <sys/un.h>

#include <cstddef>
#include <optional>
#include <string>

#include "platform/descriptor.h"

namespace vell::platform {

/// Bytes of a socket path with its terminating NUL, the same everywhere so that a path that works on
/// one system works on all.
inline constexpr std::size_t socketPathLimit = 104;

/// The address of a socket path; none where the path is too long.
std::optional<sockaddr_un> socketAddress(const std::string& path);

/// A stream socket that child processes do not inherit; empty, with errno set, where there is none.
Descriptor openStreamSocket();

/// Connects to the address. Returns 0, or -1 with errno set.
int connectSocket(int socket, const sockaddr_un& address);

/// Writes like write(2), but a peer that went away is an error (EPIPE) and never a signal, provided the
/// socket was prepared by `openStreamSocket` or `prepareSocket`.
ssize_t writeSocket(int socket, const char* data, std::size_t size);

/// Makes an accepted socket close on exec and, where the system wants it said once, free of signals; widens
/// its buffers where the system's are narrow.
void prepareSocket(int socket);

/// Whether the process at the other end of a connected socket runs as the same user as this one. False where
/// the system cannot tell.
bool peerIsCurrentUser(int socket);

}  // namespace vell::platform
