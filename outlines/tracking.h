#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "ipc/outline_summary.h"

namespace vell::outlines {

/// An open outline as a resource.
struct OutlineResource {
  std::string uri;
  std::string name;                 // the outline's display name
  std::optional<std::string> path;  // of its file, once saved
  std::string persistentId;
};

/// What became different between two states of the open outlines. A renamed outline is removed and added.
struct OutlineChanges {
  std::vector<std::string> removedURIs;
  std::vector<OutlineResource> added;
  bool frontmost = false;
};

/// Remembers which outlines are open in the application.
class OutlineTracker {
 public:
  /// Takes the outlines that are open now, frontmost first. Returns what changed.
  OutlineChanges reconcile(const std::vector<ipc::OutlineSummary>& open);

 private:
  std::map<std::string, std::string> registered_;  // names by URI
  std::optional<std::string> lastFrontmostPid_;
};

/// How long to wait before subscribing again: longer each time, until a subscription works.
class RetryDelay {
 public:
  std::chrono::milliseconds next();
  void reset() { delay_ = shortest; }

 private:
  static constexpr std::chrono::milliseconds shortest{250};
  static constexpr std::chrono::milliseconds longest{2000};
  std::chrono::milliseconds delay_ = shortest;
};

}  // namespace vell::outlines
