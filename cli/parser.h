#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
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

// The words of a command line.

using Words = std::span<const std::string>;

/// The word behind which no other is an option.
inline constexpr std::string_view terminator = "--";

/// An option as typed, or a plain argument, which has one value and no name.
struct Token {
  std::string name;
  std::vector<std::string> values;
};

/// Whether a word names an option: it begins with "-" and is more than that.
bool isOptionToken(const std::string& word);

/// The same of a word among those of a command: "- [ ] Buy milk" is the text of a row, as no option's name
/// holds a blank.
bool isOptionOf(const Command& command, const std::string& word);

/// Splits `--name=value`, `-nvalue` and `-n=value`.
Token splitAttached(const std::string& word);

/// How many of the words behind an option are its values.
std::size_t followingValues(const Option& option, Words rest);

/// Follows the command names down from `root`, options standing anywhere between them, and gives every other
/// word to the options of the command found.
CommandLine parse(const Command& root, const ArgumentList& words);

}  // namespace vell::cli
