#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "json/document.h"

namespace vell::ipc {

/// The application's description of an open outline.
struct OutlineSummary {
  std::string persistentId;
  std::string displayName;
  std::optional<std::string> fileURL;  // none for an outline that was never saved
};

/// A result of another shape than expected; `what()` names the place.
class ShapeError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Both throw ShapeError.
OutlineSummary decodeOutlineSummary(const json::Node& summary);
std::vector<OutlineSummary> decodeOutlineSummaries(const json::Node& summaries);

}  // namespace vell::ipc
