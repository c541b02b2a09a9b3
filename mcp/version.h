#pragma once

#include <string>
#include <vector>

namespace vell::mcp {

/// The revisions of the Model Context Protocol.
struct Version {
  static constexpr const char* v2025_11_25 = "2025-11-25";
  static constexpr const char* v2025_06_18 = "2025-06-18";
  static constexpr const char* v2025_03_26 = "2025-03-26";
  static constexpr const char* v2024_11_05 = "2024-11-05";

  static constexpr const char* latest = v2025_11_25;
  /// Assumed for a peer that has not stated one; on purpose not the latest.
  static constexpr const char* defaultNegotiated = v2025_03_26;

  /// Newest first.
  static std::vector<std::string> supported() { return {v2025_11_25, v2025_06_18, v2025_03_26, v2024_11_05}; }
};

}  // namespace vell::mcp
