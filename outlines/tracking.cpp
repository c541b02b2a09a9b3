#include "outlines/tracking.h"

#include <algorithm>
#include <utility>

#include "outlines/resource_uri.h"

namespace vell::outlines {

OutlineChanges OutlineTracker::reconcile(const std::vector<ipc::OutlineSummary>& open) {
  std::map<std::string, std::string> current;
  OutlineChanges changes;
  for (const ipc::OutlineSummary& outline : open) {
    const std::string uri = resourceURI(outline);
    if (!current.emplace(uri, outline.displayName).second) continue;
    const auto known = registered_.find(uri);
    if (known != registered_.end() && known->second == outline.displayName) continue;
    changes.added.push_back({uri, outline.displayName, filePath(outline), outline.persistentId});
  }
  for (const auto& [uri, name] : registered_) {
    const auto still = current.find(uri);
    if (still == current.end() || still->second != name) changes.removedURIs.push_back(uri);
  }
  registered_ = std::move(current);
  const auto frontmost = open.empty() ? std::nullopt : std::optional(open.front().persistentId);
  changes.frontmost = std::exchange(lastFrontmostPid_, frontmost) != frontmost;
  return changes;
}

std::chrono::milliseconds RetryDelay::next() { return std::exchange(delay_, std::min(2 * delay_, longest)); }

}  // namespace vell::outlines
