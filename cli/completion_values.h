#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/command.h"

namespace vell::cli {

/// A word that may be typed, and what it means; empty where it speaks for itself.
struct Candidate {
  std::string word;
  std::string description{};
};
using Candidates = std::vector<Candidate>;

/// A value that is being typed.
struct TypedValue {
  const Option& option;
  std::string text;
  /// The outline that the command line names; none for the frontmost.
  std::optional<std::string> outline = {};
};

/// What the value may be: fixed words and what the application tells of, within a moment; without it, the
/// fixed words. Not all of them begin with the text. None where the value is a file's path.
std::optional<Candidates> valuesFor(const TypedValue& value);

}  // namespace vell::cli
