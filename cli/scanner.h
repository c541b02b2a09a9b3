#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "cli/command.h"

namespace vell::cli {

/// One step over a command line: an option with its values, a plain argument, or the "--" that ends options.
struct Token {
  enum class Kind { option, argument, terminator };

  Kind kind = Kind::argument;
  /// As typed, without a value attached by "=".
  std::string_view name;
  /// The declaration of that name; null when the command has none.
  const Option* option = nullptr;
  /// A value attached as in `--name=value`, `-nvalue` or `-n=value`.
  std::optional<std::string_view> attached;
  /// The values that follow.
  std::span<const std::string> values;

  /// How many arguments the token covers.
  std::size_t size() const { return 1 + values.size(); }
};

/// Options that every command understands.
inline constexpr Option helpOption{
    .name = "--help", .shortName = "-h", .help = "Show help information.", .takes = Takes::nothing};
inline constexpr Option versionOption{
    .name = "--version", .help = "Show the version.", .takes = Takes::nothing};

/// The token at the front of `arguments`, which must not be empty, read with the options of `command`.
Token scan(const Command& command, std::span<const std::string> arguments);

}  // namespace vell::cli
