#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mcp/logger.h"
#include "mcp/resource.h"
#include "mcp/server.h"
#include "mcp/server_info.h"
#include "mcp/tool_registry.h"

namespace vell::mcp {

/// The server that a program configures with its name, tools and resources. It answers the methods that list,
/// call and read them, in one session per transport, and notifies every session when a list changes.
class MCPServer {
 public:
  /// Without capabilities a session offers logging and what is registered when it begins.
  explicit MCPServer(ServerInfo info, std::optional<ServerCapabilities> capabilities = {},
                     Logger logger = Logger("mcp.server"));
  MCPServer(const MCPServer&) = delete;
  MCPServer& operator=(const MCPServer&) = delete;

  /// A questionable name is registered all the same, with a warning.
  void registerTool(const std::shared_ptr<Tool>& tool);
  void registerResource(std::string uri, ResourceDescription description, ResourceReader reader);
  void registerResourceTemplate(std::string uriTemplate, ResourceDescription description,
                                ResourceReader reader);

  ToolRegistry& toolRegistry() { return toolRegistry_; }
  ResourceRegistry& resourceRegistry() { return resourceRegistry_; }
  bool hasTools() const { return !toolRegistry_.empty(); }
  bool hasResources() const { return !resourceRegistry_.empty(); }
  bool hasPrompts() const { return false; }

  /// Begins a session on the transport. Server and transport must outlive it. Throws what connecting throws.
  std::shared_ptr<Server> run(Transport& transport);
  /// To every session.
  void sendResourceUpdated(const std::string& uri);

 private:
  ServerCapabilities capabilities() const;
  void bindMethods(Server& session);
  void listTools(const std::optional<Value>& params, const RequestContextPtr& request);
  void callTool(const std::optional<Value>& params, const RequestContextPtr& request);
  void listResources(const std::optional<Value>& params, const RequestContextPtr& request);
  void listResourceTemplates(const std::optional<Value>& params, const RequestContextPtr& request);
  void readResource(const std::optional<Value>& params, const RequestContextPtr& request);
  void acknowledge(const std::optional<Value>& params, const RequestContextPtr& request);
  void listPrompts(const std::optional<Value>& params, const RequestContextPtr& request);
  void getPrompt(const std::optional<Value>& params, const RequestContextPtr& request);
  template <class Action>
  void forEachSession(Action action);

  ServerInfo info_;
  std::optional<ServerCapabilities> capabilities_;
  Logger logger_;
  ToolRegistry toolRegistry_;
  ResourceRegistry resourceRegistry_;
  std::vector<std::weak_ptr<Server>> sessions_;
};

}  // namespace vell::mcp
