#pragma once

#include <string>
#include <vector>

#include "tests/support/process.h"
#include "tests/support/temporary_directory.h"

namespace vell::tests {

/// Runs `vell` with those arguments to its end.
Ended vell(std::vector<std::string> arguments, const std::string& input = "");

/// What `vell` prints with those arguments; a test failure, with what it says, unless its status is 0.
std::string printed(std::vector<std::string> arguments, const std::string& input = "");

/// Waits until an application serves the home directory's socket.
void awaitApplication();

/// The headless Vell, serving those files from the current home directory until its guard ends.
class Application {
 public:
  explicit Application(std::vector<std::string> files = {});

  pid_t process() const { return process_.id(); }
  void kill() { process_.signal(9); }
  /// Asks it to end, and waits for that.
  Ended stop();

 private:
  Process process_;
};

/// The files of samples/, copied into that directory.
std::vector<std::string> copySamples(const TemporaryDirectory& directory);

}  // namespace vell::tests
