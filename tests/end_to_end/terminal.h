#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/descriptor.h"
#include "tests/support/process.h"

namespace vell::tests {

/// A child process that a person sees: its three streams are a pseudo-terminal of 80 columns and 24 lines,
/// in which line feeds stay what they are. Whatever becomes of the test, it ends with its guard.
class Terminal {
 public:
  /// `environment` is added to that of the test: "TERM=xterm".
  explicit Terminal(std::vector<std::string> command, const std::vector<std::string>& environment = {});
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  void type(std::string_view text) const;
  /// Everything that was shown so far, once that contains the text or the process has ended; after a minute a
  /// test failure.
  const std::string& shown(std::string_view text);
  /// Waits for the end as `shown` does; all that was shown is the output.
  Ended wait();

 private:
  /// False at the end.
  bool receive();

  platform::Descriptor master_;
  pid_t id_;
  std::string shown_;
};

}  // namespace vell::tests
