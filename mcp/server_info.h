#pragma once

#include <optional>
#include <string>
#include <vector>

#include "mcp/value.h"
#include "mcp/version.h"

namespace vell::mcp {

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

/// What the server offers. A list that is offered announces its changes.
struct ServerCapabilities {
  bool logging = false;
  bool tools = false;
  bool resources = false;
  bool prompts = false;

  Value toValue() const;
};

struct ServerConfiguration {
  bool strict;  // refuses requests before `initialize`
  std::vector<std::string> supportedProtocolVersions;

  static ServerConfiguration standard() { return {true, Version::supported()}; }
  static ServerConfiguration lenient() { return {false, Version::supported()}; }
};

}  // namespace vell::mcp
