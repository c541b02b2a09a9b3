#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cli/command.h"

namespace vell::cli {

/// What one command line gives to the options of its command.
class Arguments {
 public:
  void add(const Option& option, const std::vector<std::string>& values);

  /// Whether the option was named, with or without values.
  bool has(const Option& option) const { return given_.contains(&option); }
  /// The value of an option that takes one; the last where it was given several times.
  std::optional<std::string> value(const Option& option) const;
  /// All values in the order given; empty when there are none.
  std::vector<std::string> values(const Option& option) const;

 private:
  std::map<const Option*, std::vector<std::string>> given_;
};

enum class Action { run, help, version };

/// What a command line asks for.
struct CommandLine {
  const Command* command;
  /// The words that lead to the command: "vell get outline".
  std::string path;
  Action action = Action::run;
  Arguments arguments;
  /// The first thing that keeps the command from running; empty when it can.
  std::string fault;
};

/// Whether a word names an option: it begins with "-" and is more than that.
bool isOptionToken(const std::string& word);

/// Follows the command names down from `root`, options standing anywhere between them, and gives every other
/// word to the options of the command found. `typed` is what the words were before references in them were
/// moved.
CommandLine parse(const Command& root, const ArgumentList& words, const ArgumentList& typed);

}  // namespace vell::cli
