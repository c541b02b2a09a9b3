#pragma once

#include <stdexcept>

namespace vell::cli {

/// What a run leaves behind for the shell.
enum ExitStatus : int {
  success = 0,
  failure = 1,
  usage = 64,
  /// The reader of standard output went away: as if the signal for it had ended the run.
  closedPipe = 141,
};

/// A command line that cannot be run as it stands; reported together with the command's usage.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Nobody reads standard output any more; the run ends without a word.
class ClosedOutput : public std::runtime_error {
 public:
  ClosedOutput() : std::runtime_error("The reader of standard output has gone.") {}
};

}  // namespace vell::cli
