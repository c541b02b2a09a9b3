#pragma once

#include "mcp/mcp_server.h"
#include "tools/calls.h"

namespace vell::tools {

/// Registers every tool, in the order in which they are listed.
void registerTools(mcp::MCPServer& server, const Services& services);

}  // namespace vell::tools
