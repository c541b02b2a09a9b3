#pragma once

#include <optional>
#include <string>
#include <vector>

#include "mcp/value.h"

namespace vell::mcp {

/// The revisions of the Model Context Protocol.
struct Version {
  static constexpr const char* v2025_11_25 = "2025-11-25";
  static constexpr const char* v2025_06_18 = "2025-06-18";
  static constexpr const char* v2025_03_26 = "2025-03-26";
  static constexpr const char* v2024_11_05 = "2024-11-05";

  static constexpr const char* latest = v2025_11_25;
  /// Assumed for a peer that states none; deliberately not the latest.
  static constexpr const char* defaultNegotiated = v2025_03_26;

  /// Newest first.
  static std::vector<std::string> supported() { return {v2025_11_25, v2025_06_18, v2025_03_26, v2024_11_05}; }
};

/// Who the server is; sent in the answer to `initialize`.
struct ServerInfo {
  std::string name;
  std::string version;
  std::optional<std::string> title = {};
  std::optional<std::string> description = {};
  std::optional<Value::Array> icons = {};
  std::optional<std::string> websiteUrl = {};
  std::optional<std::string> instructions = {};  // beside the info, not in it

  Value toValue() const;
};

/// What the server offers; a capability that is absent is not written.
struct ServerCapabilities {
  /// Of a list: whether the server announces its changes.
  struct List {
    bool listChanged = false;
  };
  struct Resources {
    bool listChanged = false;
    bool subscribe = false;
  };

  std::optional<List> tools = {};
  std::optional<Resources> resources = {};
  std::optional<List> prompts = {};
  bool logging = false;
  bool completions = false;
  std::optional<Value::Object> tasks = {};
  std::optional<Value::Object> experimental = {};

  Value toValue() const;
};

struct ServerConfiguration {
  bool strict;  // refuses requests before `initialize`
  std::vector<std::string> supportedProtocolVersions;

  static ServerConfiguration standard() { return {true, Version::supported()}; }
  static ServerConfiguration lenient() { return {false, Version::supported()}; }
};

}  // namespace vell::mcp
