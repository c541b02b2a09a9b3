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
  std::string text = "Vell.app must be running for CLI/MCP access.\nError: (socket " + path + ": " +
                     std::strerror(error) + ")";
  if (error == EPERM)
    text +=
        "\nThe system keeps this program out of Vell's container. On macOS, allow the terminal or the host "
        "that "
        "started it under System Settings > Privacy & Security > Full Disk Access, and start that anew.";
  return {Kind::connect, text, error};
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
