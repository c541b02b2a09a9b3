#include "outlines/tracking.h"

#include <algorithm>
#include <utility>

#include "outlines/resource_uri.h"

namespace vell::outlines {

void OutlineTracker::reconcile(const std::vector<ipc::OutlineSummary>& open) {
  std::map<std::string, std::string> current;
  std::vector<OutlineResource> added;
  for (const ipc::OutlineSummary& outline : open) {
    const std::string uri = resourceURI(outline);
    if (!current.emplace(uri, outline.displayName).second) continue;
    const auto known = registered_.find(uri);
    if (known != registered_.end() && known->second == outline.displayName) continue;
    added.push_back({uri, outline.displayName, filePath(outline), outline.persistentId});
  }
  std::vector<std::string> removed;
  for (const auto& [uri, name] : registered_) {
    const auto still = current.find(uri);
    if (still == current.end() || still->second != name) removed.push_back(uri);
  }
  registered_ = std::move(current);
  if (!added.empty() || !removed.empty()) board_.change(removed, added);

  const auto frontmost = open.empty() ? std::nullopt : std::optional(open.front().persistentId);
  if (std::exchange(lastFrontmostPid_, frontmost) != frontmost) board_.frontmostChanged();
}

std::chrono::milliseconds RetryDelay::next() { return std::exchange(delay_, std::min(2 * delay_, longest)); }

}  // namespace vell::outlines
