#include "bench/mcp_session.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <vector>

#include "bench/clock.h"

extern char** environ;

namespace vell::bench {
namespace {

constexpr std::size_t chunk = 1 << 18;

constexpr const char* initializeRequest =
    R"({"jsonrpc":"2.0","id":0,"method":"initialize","params":{"protocolVersion":"2025-11-25","capabilities":{},)"
    R"("clientInfo":{"name":"bench","version":"1"}}})";
constexpr const char* initialized = "{\"jsonrpc\":\"2.0\",\"method\":\"notifications/initialized\"}\n";

struct Pipe {
  int read;
  int write;
};

Pipe openPipe() {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
  return {ends[0], ends[1]};
}

void writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(descriptor, bytes.data(), bytes.size());
    if (count <= 0) throw std::runtime_error("the server reads no more");
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

}  // namespace

McpSession::McpSession(const Command& command) {
  signal(SIGPIPE, SIG_IGN);
  const Pipe in = openPipe();
  const Pipe out = openPipe();
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in.read, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, out.write, STDOUT_FILENO);
  std::vector<char*> arguments;
  for (const auto& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  const int error = posix_spawnp(&process_, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(in.read);
  close(out.write);
  toServer_ = in.write;
  fromServer_ = out.read;
  if (error != 0) throw std::runtime_error("cannot start " + command[0]);
}

McpSession::~McpSession() {
  close(toServer_);
  close(fromServer_);
  waitpid(process_, nullptr, 0);
}

void McpSession::initialize() {
  if (exchange(initializeRequest).find(R"("id":0)") == std::string_view::npos) {
    throw std::runtime_error("initialize was not answered");
  }
  writeAll(toServer_, initialized);
}

std::string_view McpSession::exchange(std::string_view request) {
  writeAll(toServer_, std::string(request) + "\n");
  return receive();
}

std::string_view McpSession::receive() {
  arrived_.erase(0, taken_);
  for (std::size_t scanned = 0;;) {
    const std::size_t end = arrived_.find('\n', scanned);
    if (end != std::string::npos) {
      taken_ = end + 1;
      return {arrived_.data(), end};
    }
    scanned = arrived_.size();
    arrived_.resize(scanned + chunk);
    const ssize_t count = read(fromServer_, arrived_.data() + scanned, chunk);
    if (count <= 0) throw std::runtime_error("the server writes no more");
    arrived_.resize(scanned + static_cast<std::size_t>(count));
  }
}

void McpSession::exchangeAll(const std::string& lines, std::size_t count) {
  const int flags = fcntl(toServer_, F_GETFL);
  fcntl(toServer_, F_SETFL, flags | O_NONBLOCK);
  static char bytes[chunk];
  std::string_view unsent = lines;
  for (std::size_t answered = 0; answered < count;) {
    pollfd waiting[] = {{fromServer_, POLLIN, 0}, {toServer_, POLLOUT, 0}};
    poll(waiting, unsent.empty() ? 1 : 2, -1);
    if (waiting[1].revents != 0) {
      const ssize_t sent = write(toServer_, unsent.data(), unsent.size());
      if (sent > 0) unsent.remove_prefix(static_cast<std::size_t>(sent));
    }
    if (waiting[0].revents == 0) continue;
    const ssize_t got = read(fromServer_, bytes, sizeof bytes);
    if (got <= 0) throw std::runtime_error("the server writes no more");
    answered += static_cast<std::size_t>(std::count(bytes, bytes + got, '\n'));
  }
  fcntl(toServer_, F_SETFL, flags);
}

double secondsToInitialize(const Command& command) {
  std::optional<McpSession> session;
  return secondsFor(1, [&] { session.emplace(command).initialize(); });
}

}  // namespace vell::bench
