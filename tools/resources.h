#pragma once

#include "mcp/mcp_server.h"
#include "outlines/tracking.h"
#include "tools/calls.h"

/// Outlines as MCP resources; every read gives the outline as Vell-flavored markdown.
namespace vell::tools {

/// Registers the two templates and the current outline.
void registerResources(mcp::MCPServer& server, const Services& services);

/// Registers and removes the resources of outlines that were opened and closed, with one notice of a changed
/// list, and tells that the current outline is another.
void applyChanges(mcp::MCPServer& server, const Services& services, const outlines::OutlineChanges& changes);

}  // namespace vell::tools
