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

/// Whoever shows the open outlines: the MCP server's resources.
class OutlineBoard {
 public:
  virtual ~OutlineBoard() = default;
  /// Takes resources away, then adds others: one change, never empty. A renamed outline is in both lists.
  virtual void change(const std::vector<std::string>& removedURIs,
                      const std::vector<OutlineResource>& added) = 0;
  virtual void frontmostChanged() = 0;
};

/// Keeps a board equal to the outlines that are open in the application.
class OutlineTracker {
 public:
  /// The board must outlive the tracker.
  explicit OutlineTracker(OutlineBoard& board) : board_(board) {}

  /// Takes in the open outlines, frontmost first, and tells the board what changed, if anything did.
  void reconcile(const std::vector<ipc::OutlineSummary>& open);

 private:
  OutlineBoard& board_;
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
