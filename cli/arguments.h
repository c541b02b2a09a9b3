#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/command.h"

namespace vell::cli {

/// What one command line gives to the options of its command.
class Arguments {
 public:
  void add(const Option& option, std::vector<std::string> values);

  /// Whether the option was named, with or without values.
  bool has(const Option& option) const;
  /// The value of an option that takes one.
  std::optional<std::string> value(const Option& option) const;
  /// All values in the order given; empty when there are none.
  const std::vector<std::string>& values(const Option& option) const;

 private:
  std::vector<std::pair<const Option*, std::vector<std::string>>> given_;
};

}  // namespace vell::cli
