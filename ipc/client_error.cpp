#include "ipc/client_error.h"

#include <cerrno>
#include <cstring>

namespace vell::ipc {

ClientError ClientError::socketCreate(int error) {
  return {Kind::socketCreate, std::string("Failed to create socket: ") + std::strerror(error)};
}

ClientError ClientError::pathTooLong(const std::string& path) {
  return {Kind::pathTooLong, "Socket path exceeds AF_UNIX limit: " + path};
}

ClientError ClientError::connect(int error, const std::string& path) {
  return {Kind::connect,
          "Vell.app must be running for CLI/MCP access.\nError: (socket " + path + ": " +
              std::strerror(error) + ")",
          error};
}

ClientError ClientError::writeFailed(int error) {
  return {Kind::writeFailed, std::string("Write failed: ") + std::strerror(error)};
}

ClientError ClientError::rpcError(std::int64_t code, const std::string& message) {
  return {Kind::rpcError, "Vell error " + std::to_string(code) + ": " + message, code};
}

ClientError ClientError::connectionClosed() {
  return {Kind::connectionClosed, "Vell closed the connection without sending a response."};
}

bool ClientError::meansNotRunning() const {
  return kind_ == Kind::connect && (code_ == ENOENT || code_ == ECONNREFUSED);
}

}  // namespace vell::ipc
