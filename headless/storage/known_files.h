#pragma once

#include <functional>
#include <optional>
#include <string>

#include "headless/storage/open_outline.h"
#include "platform/identifier_index.h"

namespace vell::headless {

/// Remembers across runs which persistent id the outline in each file has, for files that do not say so
/// themselves. It only helps to find files again: a failure is reported and nothing else.
class KnownFiles {
 public:
  /// The container's directory must exist.
  KnownFiles(const std::string& container, std::function<void(const std::string&)> report)
      : index_(container), report_(std::move(report)) {}

  /// The id remembered for the outline's file; empty where there is none.
  std::string idOf(const OpenOutline& opened);
  /// Where the file stood when it was last remembered that is at `path` now.
  std::optional<std::string> formerPath(const std::string& path);

  void remember(const OpenOutline& opened);
  void forget(const std::string& path);

 private:
  template <class Action>
  void withIndex(Action action);

  platform::IdentifierIndex index_;
  const std::function<void(const std::string&)> report_;
};

}  // namespace vell::headless
