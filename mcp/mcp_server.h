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

/// What a program configures: who it is, its tools and its resources. It answers the methods that list, call
/// and read them, in one session per transport, and tells every session when a list changes.
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

  ToolRegistry& tools() { return tools_; }
  ResourceRegistry& resources() { return resources_; }
  bool hasTools() const { return !tools_.empty(); }
  bool hasResources() const { return !resources_.empty(); }
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
  ToolRegistry tools_;
  ResourceRegistry resources_;
  std::vector<std::weak_ptr<Server>> sessions_;
};

}  // namespace vell::mcp
