#include "bench/process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <utility>

extern char** environ;

namespace vell::bench {
namespace {

pid_t start(const Command& command, const std::string& output) {
  std::vector<char*> arguments;
  for (const auto& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT, 0600);
  pid_t process = 0;
  const int error = posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("cannot start " + command[0]);
  return process;
}

}  // namespace

Cost run(const Command& command, const std::string& output) {
  if (output != "/dev/null") unlink(output.c_str());
  const auto begin = std::chrono::steady_clock::now();
  const pid_t process = start(command, output);
  int status = 0;
  rusage usage{};
  wait4(process, &status, 0, &usage);
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
  if (status != 0) throw std::runtime_error(command[0] + " failed");
  return {taken.count(), static_cast<double>(usage.ru_maxrss) * 1024};
}

Background::Background(const Command& command) : process_(start(command, "/dev/null")) {}

Background::Background(Background&& other) noexcept : process_(std::exchange(other.process_, 0)) {}

Background::~Background() {
  if (process_ == 0) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

}  // namespace vell::bench
