#pragma once

#include <string>

#include "tests/support/temporary_directory.h"

namespace vell::tests {

/// An application bundle whose executable is a shell script, in a directory that the script finds in $dir.
class Bundle {
 public:
  explicit Bundle(const std::string& script, const std::string& executable = "app");

  std::string path() const { return directory_ / "Vell.app"; }

  /// What the script wrote to that file of the directory. Waits until the file is there: the script is to
  /// move it into place when it is whole.
  std::string await(const std::string& name) const;

 private:
  TemporaryDirectory directory_;
};

}  // namespace vell::tests
