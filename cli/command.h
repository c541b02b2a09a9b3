#pragma once

#include <span>
#include <string>
#include <string_view>

namespace vell::cli {

class Arguments;
class Console;

/// How many values follow an option: none (a flag); one, the option given at most once; one at each of
/// its repetitions; or all up to the next option.
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
  std::span<const Option* const> options{};
  std::span<const Command* const> subcommands{};
  std::span<const Example> examples{};
  /// Sections printed behind the generated ones, laid out as they stand.
  std::string_view appendix{};
  /// Looks at the process arguments as typed before they are parsed. Throws UsageError.
  void (*check)(std::span<const std::string> typed) = nullptr;
  /// Throws UsageError before any connection is made, anything else when the command fails.
  void (*run)(const Arguments& arguments, Console& console) = nullptr;
};

}  // namespace vell::cli
