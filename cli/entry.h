#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string_view>

#include "cli/command.h"
#include "cli/console.h"

namespace vell::cli {

/// The program: from its arguments to its exit status.
class Vell {
 public:
  /// Runs one command line, given without the program's name, and says on standard error what goes wrong.
  static int main(const ArgumentList& arguments, Console& console);

  /// Lets row references be written as plain arguments of the commands that take them through an option:
  /// collects them behind one `--refs` or `--path`. Other command lines pass unchanged.
  static ArgumentList preprocessOutlineRefs(const ArgumentList& arguments);
};

using OptionNames = std::set<std::string_view>;

/// Where the option at index `at` and its values end; none when an argument, "--" or nothing stands there.
std::optional<std::size_t> optionSpan(std::size_t at, const ArgumentList& arguments,
                                      const OptionNames& valueOptions, const OptionNames& multiValueOptions);

}  // namespace vell::cli
