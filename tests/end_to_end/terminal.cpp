#include "tests/end_to_end/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>

namespace vell::tests {
namespace {

/// Makes the terminal that of this process alone.
void attach(const char* name) {
  setsid();
  const int terminal = open(name, O_RDWR);
  ioctl(terminal, TIOCSCTTY, 0);
  const winsize size{.ws_row = 24, .ws_col = 80, .ws_xpixel = 0, .ws_ypixel = 0};
  ioctl(terminal, TIOCSWINSZ, &size);
  termios settings{};
  tcgetattr(terminal, &settings);
  settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
  tcsetattr(terminal, TCSANOW, &settings);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(terminal, stream);
  if (terminal > STDERR_FILENO) close(terminal);
}

[[noreturn]] void become(std::vector<std::string>& command, const std::vector<std::string>& environment) {
  for (const std::string& variable : environment) {
    const std::size_t equals = variable.find('=');
    setenv(variable.substr(0, equals).c_str(), variable.substr(equals + 1).c_str(), 1);
  }
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (std::string& argument : command) arguments.push_back(argument.data());
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  _exit(127);
}

}  // namespace

Terminal::Terminal(std::vector<std::string> command, const std::vector<std::string>& environment)
    : master_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
  grantpt(master_.get());
  unlockpt(master_.get());
  const std::string name = ptsname(master_.get());
  id_ = fork();
  if (id_ != 0) return;
  attach(name.c_str());
  become(command, environment);
}

Terminal::~Terminal() {
  if (id_ == 0) return;
  kill(id_, SIGKILL);
  waitpid(id_, nullptr, 0);
}

void Terminal::type(std::string_view text) const { platform::writeAll(master_.get(), text); }

const std::string& Terminal::shown(std::string_view text) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (shown_.find(text) == std::string::npos) {
    if (std::chrono::steady_clock::now() > deadline) {
      ADD_FAILURE() << "not shown: " << text << "\nbut: " << shown_;
      break;
    }
    if (platform::waitUntilReadable(master_.get(), std::chrono::milliseconds(100)) && !receive()) break;
  }
  return shown_;
}

// The end is an error on Linux and nothing to read elsewhere.
bool Terminal::receive() {
  char chunk[4096];
  const ssize_t count = read(master_.get(), chunk, sizeof chunk);
  if (count > 0) shown_.append(chunk, static_cast<std::size_t>(count));
  return count > 0 || (count < 0 && errno == EINTR);
}

Ended Terminal::wait() {
  const std::string never(1, '\0');
  shown(never);
  int status = 0;
  waitpid(id_, &status, 0);
  id_ = 0;
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), shown_, ""};
}

}  // namespace vell::tests
