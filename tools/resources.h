#pragma once

#include <string>

#include "mcp/mcp_server.h"
#include "tools/calls.h"

/// Outlines as MCP resources; every read gives the outline as Vell-flavored markdown.
namespace vell::tools {

inline constexpr const char* currentOutlineURI = "vell://current-outline";
inline constexpr const char* markdownType = "text/markdown";

/// Registers the two templates and the current outline.
void registerResources(mcp::MCPServer& server, const Services& services);

/// Answers the read with the file's outline; opens it, and the application, where need be.
void readFile(const Services& services, const std::string& path, const mcp::ResourceReadPtr& read);
/// Answers the read with an open outline.
void readOpenOutline(const Services& services, const std::string& persistentId,
                     const mcp::ResourceReadPtr& read);

}  // namespace vell::tools
