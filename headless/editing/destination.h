#pragma once

#include <functional>
#include <optional>
#include <string>

#include "headless/document.h"

namespace vell::headless {

/// Where a client wants rows: before a sibling, or else after one, or else below a parent.
struct DestinationRequest {
  const Row* parent = nullptr;  ///< null: the root
  std::optional<std::string>
      position;  ///< among the parent's children: "start", "end" (as if none) or an index from 0
  const Row* before = nullptr;
  const Row* after = nullptr;
};

/// Where rows go: below `parent`, before that child or last.
struct Destination {
  const Row* parent;
  const Row* before;
};

using RowFilter = std::function<bool(const Row&)>;

/// Positions count only the children that `stays` accepts. Throws Problem for a place beside the root and for
/// a position that does not exist.
Destination resolve(
    const Outline& outline, const DestinationRequest& request,
    const RowFilter& stays = [](const Row&) { return true; });

}  // namespace vell::headless
