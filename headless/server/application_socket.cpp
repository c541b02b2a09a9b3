#include "headless/server/application_socket.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "headless/editing/problem.h"
#include "platform/socket.h"

namespace vell::headless {
namespace {

sockaddr_un addressOf(const std::string& path) {
  if (const auto address = platform::socketAddress(path)) return *address;
  throw Problem("The socket path is longer than " + std::to_string(platform::socketPathLimit - 1) +
                " bytes: " + path + " (set HOME to a shorter directory)");
}

platform::Descriptor newSocket() {
  platform::Descriptor socket = platform::openStreamSocket();
  if (!socket) throw systemProblem("Cannot create a socket");
  return socket;
}

std::string lockPathOf(const std::string& path) { return path + ".lock"; }

/// Held by the application that serves the socket, for as long as it runs; none where another holds it. The
/// file says which process that is.
platform::Descriptor lockBeside(const std::string& path) {
  const std::string lockPath = lockPathOf(path);
  platform::Descriptor lock(open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  if (!lock) throw systemProblem("Cannot open " + lockPath);
  if (flock(lock.get(), LOCK_EX | LOCK_NB) == 0) {
    if (ftruncate(lock.get(), 0) == 0) platform::writeAll(lock.get(), std::to_string(getpid()) + "\n");
    return lock;
  }
  if (errno != EWOULDBLOCK && errno != EINTR) throw systemProblem("Cannot lock " + lockPath);
  return platform::Descriptor();
}

void removeStale(const std::string& path) {
  struct stat found {};
  if (lstat(path.c_str(), &found) != 0) return;
  if (!S_ISSOCK(found.st_mode))
    throw Problem("Something that is no socket stands at " + path + ": move it away");
  unlink(path.c_str());
}

platform::Descriptor listenAt(const std::string& path) {
  const sockaddr_un address = addressOf(path);
  platform::Descriptor listener = newSocket();
  // The mask is set before the file exists: changing its mode afterwards would leave a moment for others.
  const mode_t before = umask(0177);
  const int bound = bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
  umask(before);
  if (bound != 0 || listen(listener.get(), SOMAXCONN) != 0) throw systemProblem("Cannot serve " + path);
  fcntl(listener.get(), F_SETFL, O_NONBLOCK);
  return listener;
}

}  // namespace

std::optional<ApplicationSocket> ApplicationSocket::claim(const std::string& path) {
  addressOf(path);
  platform::Descriptor lock = lockBeside(path);
  // An application that takes no lock may serve the socket too.
  if (!lock || connectTo(path)) return std::nullopt;
  removeStale(path);
  platform::Descriptor listener = listenAt(path);
  return ApplicationSocket(path, std::move(lock), std::move(listener));
}

ApplicationSocket::ApplicationSocket(std::string path, platform::Descriptor lock,
                                     platform::Descriptor listener)
    : path_(std::move(path)), lock_(std::move(lock)), listener_(std::move(listener)) {
  struct stat made {};
  if (lstat(path_.c_str(), &made) == 0) inode_ = made.st_ino;
}

void ApplicationSocket::remove() {
  if (!listener_) return;
  struct stat found {};
  if (lstat(path_.c_str(), &found) == 0 && found.st_ino == inode_) unlink(path_.c_str());
  listener_ = platform::Descriptor();
}

std::optional<pid_t> holderOf(const std::string& path) {
  const platform::Descriptor lock(open(lockPathOf(path).c_str(), O_RDONLY | O_CLOEXEC));
  if (!lock || flock(lock.get(), LOCK_SH | LOCK_NB) == 0) return std::nullopt;
  char digits[16] = {};
  const ssize_t count = read(lock.get(), digits, sizeof digits - 1);
  return count > 0 ? static_cast<pid_t>(std::strtol(digits, nullptr, 10)) : 0;
}

platform::Descriptor connectTo(const std::string& path) {
  const sockaddr_un address = addressOf(path);
  platform::Descriptor socket = newSocket();
  return platform::connectSocket(socket.get(), address) == 0 ? std::move(socket) : platform::Descriptor();
}

}  // namespace vell::headless
