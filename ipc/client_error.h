#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace vell::ipc {

/// A call that failed on its way to the application, or that the application refused (`rpcError`).
/// `what()` is the text for the user.
class ClientError : public std::runtime_error {
 public:
  enum class Kind { socketCreate, pathTooLong, connect, writeFailed, rpcError, connectionClosed };

  static ClientError socketCreate(int error);
  static ClientError pathTooLong(const std::string& path);
  static ClientError connect(int error, const std::string& path);
  static ClientError writeFailed(int error);
  static ClientError rpcError(std::int64_t code, const std::string& message);
  static ClientError connectionClosed();

  Kind kind() const { return kind_; }
  /// The application's code, the error number of a failed connect; 0 for the other kinds.
  std::int64_t code() const { return code_; }
  /// Whether the application does not run: its socket does not exist, or no process serves it.
  bool meansNotRunning() const;
  /// Whether the connection cannot be used any more.
  bool endsConnection() const { return kind_ != Kind::rpcError; }

 private:
  ClientError(Kind kind, const std::string& description, std::int64_t code = 0)
      : std::runtime_error(description), kind_(kind), code_(code) {}

  Kind kind_;
  std::int64_t code_;
};

/// A call over the shared connection of `vell mcp` that failed; its text is the underlying error's.
class VellIPCError : public std::runtime_error {
 public:
  explicit VellIPCError(const ClientError& error) : std::runtime_error(error.what()), underlying(error) {}

  const ClientError underlying;
};

}  // namespace vell::ipc
