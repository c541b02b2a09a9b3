#pragma once

#include <string>
#include <vector>

#include "mcp/mcp_server.h"
#include "outlines/tracking.h"
#include "tools/calls.h"

namespace vell::tools {

/// The open outlines among the server's resources, one of each.
class OutlineResources : public outlines::OutlineBoard {
 public:
  OutlineResources(mcp::MCPServer& server, const Services& services) : server_(server), services_(services) {}

  /// One notice of a changed list, however much changes.
  void change(const std::vector<std::string>& removedURIs,
              const std::vector<outlines::OutlineResource>& added) override;
  void frontmostChanged() override;

 private:
  void add(const outlines::OutlineResource& outline);

  mcp::MCPServer& server_;
  Services services_;
};

}  // namespace vell::tools
