#include "cli/arguments.h"

#include <algorithm>

namespace vell::cli {

void Arguments::add(const Option& option, std::vector<std::string> values) {
  given_.emplace_back(&option, std::move(values));
}

bool Arguments::has(const Option& option) const {
  return std::any_of(given_.begin(), given_.end(), [&](const auto& entry) { return entry.first == &option; });
}

std::optional<std::string> Arguments::value(const Option& option) const {
  const auto& all = values(option);
  if (all.empty()) return std::nullopt;
  return all.front();
}

const std::vector<std::string>& Arguments::values(const Option& option) const {
  static const std::vector<std::string> none;
  for (const auto& [given, all] : given_) {
    if (given == &option) return all;
  }
  return none;
}

}  // namespace vell::cli
