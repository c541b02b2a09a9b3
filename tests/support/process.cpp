#include "tests/support/process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

namespace vell::tests {
namespace {

std::string contentOf(std::FILE* file) {
  std::string content;
  char chunk[65536];
  std::rewind(file);
  while (const std::size_t count = std::fread(chunk, 1, sizeof chunk, file)) content.append(chunk, count);
  return content;
}

}  // namespace

Process::Process(std::string program, std::vector<std::string> arguments, const std::string& input,
                 int output)
    : output_(std::tmpfile(), std::fclose), error_(std::tmpfile(), std::fclose) {
  const File source(std::tmpfile(), std::fclose);
  std::fwrite(input.data(), 1, input.size(), source.get());
  std::rewind(source.get());
  std::vector<char*> argv{program.data()};
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  id_ = fork();
  if (id_ != 0) return;
  dup2(fileno(source.get()), STDIN_FILENO);
  dup2(output == -1 ? fileno(output_.get()) : output, STDOUT_FILENO);
  dup2(fileno(error_.get()), STDERR_FILENO);
  execv(argv[0], argv.data());
  _exit(127);
}

Process::~Process() {
  if (id_ == 0) return;
  signal(SIGKILL);
  waitpid(id_, nullptr, 0);
}

void Process::signal(int number) const { kill(id_, number); }

Ended Process::wait() {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  int status = 0;
  while (waitpid(id_, &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() > deadline) signal(SIGKILL);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  id_ = 0;
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), contentOf(output_.get()),
          contentOf(error_.get())};
}

}  // namespace vell::tests
