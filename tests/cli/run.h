#pragma once

#include <string>
#include <string_view>

#include "cli/command.h"

namespace vell::cli {

/// What a command line left behind.
struct Outcome {
  int status;
  std::string out;
  std::string err;
};

/// The words of a command line; single quotes keep blanks together.
ArgumentList words(std::string_view line);

/// Runs a command line in this process with that standard input.
Outcome run(const ArgumentList& arguments, std::string_view input = "");
inline Outcome run(std::string_view line, std::string_view input = "") { return run(words(line), input); }

}  // namespace vell::cli
