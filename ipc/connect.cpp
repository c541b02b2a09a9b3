#include "ipc/connect.h"

#include <cerrno>

#include "ipc/client_error.h"
#include "platform/socket.h"

namespace vell::ipc {

platform::Descriptor connectToApplication(const std::string& socketPath) {
  platform::Descriptor socket = platform::openStreamSocket();
  if (!socket) throw ClientError::socketCreate(errno);
  const auto address = platform::socketAddress(socketPath);
  if (!address) throw ClientError::pathTooLong(socketPath);
  if (platform::connectSocket(socket.get(), *address) == 0) return socket;
  throw ClientError::connect(errno, socketPath);
}

}  // namespace vell::ipc
