#pragma once

#include "cli/console.h"
#include "cli/row_refs.h"

namespace vell::cli {

/// The program: from its arguments to its exit status.
class Vell {
 public:
  /// Runs one command line, given without the program's name, and says on standard error what goes wrong.
  static int main(const ArgumentList& arguments, Console& console);
};

}  // namespace vell::cli
