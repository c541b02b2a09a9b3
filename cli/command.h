#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vell::cli {

class Arguments;
class Console;

using ArgumentList = std::vector<std::string>;

/// How many values follow an option: none (a flag); one, of which the last given counts; one at each of its
/// repetitions, which all count; or all up to the next option.
enum class Takes { nothing, one, each, list };

/// An option, or a positional argument when its name carries no dashes. Whatever reads, explains or completes
/// command lines reads this declaration; commands look their values up by its address.
struct Option {
  std::string_view name;
  std::string_view shortName{};
  /// What stands between angle brackets in usage lines; empty for a flag.
  std::string_view value{};
  std::string_view help{};
  Takes takes = Takes::one;
  bool required = false;
  /// What to say when a required option is absent; empty for the usual words.
  std::string_view missing{};
  /// The only values taken; empty when any is.
  std::span<const std::string_view> choices{};
  /// Values that shells offer; others are taken, too.
  std::span<const std::string_view> suggestions{};
  /// Whether the value is a file's path, so that shells complete it.
  bool file = false;

  constexpr bool positional() const { return !name.starts_with('-'); }
  constexpr bool repeats() const { return takes == Takes::each || takes == Takes::list; }
};

/// A command line without its "vell", and what it does.
struct Example {
  std::string_view line;
  std::string_view meaning;
};

/// One command of the tree; a group has subcommands and no `run`.
struct Command {
  std::string_view name;
  std::string_view abstract{};
  std::string_view discussion{};
  std::vector<const Option*> options{};
  std::vector<const Command*> subcommands{};
  std::vector<Example> examples{};
  /// Sections printed behind the generated ones, laid out as they stand.
  std::string_view appendix{};
  /// The option that plain arguments are written behind before the command line is parsed.
  const Option* plainArguments = nullptr;
  /// Why the command line as typed, with plain arguments where they stood, cannot be run; empty when it can.
  std::string (*check)(const ArgumentList& typed) = nullptr;
  /// Throws UsageError before any connection is made, anything else when the command fails.
  void (*run)(const Arguments& arguments, Console& console) = nullptr;
};

/// A command line that cannot be run as it stands; reported together with the command's usage.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Options that every command understands.
inline constexpr Option helpOption{
    .name = "--help", .shortName = "-h", .help = "Show help information.", .takes = Takes::nothing};
inline constexpr Option versionOption{
    .name = "--version", .help = "Show the version.", .takes = Takes::nothing};

/// The command's options that are typed with dashes, and those that every command has.
std::vector<const Option*> namedOptions(const Command& command);

/// The option of that name, long or short, and the subcommand; null where there is none.
const Option* findOption(const Command& command, std::string_view name);
const Command* findSubcommand(const Command& command, std::string_view name);

/// Among the words that lead to a command: shows its help.
inline constexpr std::string_view helpCommand = "help";

/// A command and the words that lead to it, beginning with the root's name.
struct TreeEntry {
  const Command* command;
  std::string path;
};

/// The command and everything below it, each before its subcommands.
std::vector<TreeEntry> wholeTree(const Command& root);

}  // namespace vell::cli
