#pragma once

#include <sys/types.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace vell::tests {

/// How a process ended: its exit status, or minus the signal that ended it, and what it wrote.
struct Ended {
  int status;
  std::string output;
  std::string error;
};

/// A child process. Whatever becomes of the test, it ends with its guard.
class Process {
 public:
  /// Starts the program with its standard input at the start of `input`. Standard output is kept for `wait`
  /// unless a descriptor is given for it.
  explicit Process(std::string program, std::vector<std::string> arguments = {},
                   const std::string& input = "", int output = -1);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  pid_t id() const { return id_; }
  void signal(int number) const;
  /// Waits for the end, a minute at most; a process that takes longer is killed.
  Ended wait();

 private:
  using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

  File output_;
  File error_;
  pid_t id_;
};

}  // namespace vell::tests
