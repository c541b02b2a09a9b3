#include "mcp/mcp_server.h"

#include "mcp/params.h"
#include "mcp/tool_registry.h"

namespace vell::mcp {

namespace {

constexpr auto optionalParams = Params::Presence::optional;
constexpr auto requiredParams = Params::Presence::required;

/// Answers a list method. Its only parameter asks for a later page, and there is never one.
void answerList(const std::optional<Value>& params, const RequestContextPtr& request, const char* key,
                Value list) {
  Params(params, optionalParams).optionalText("cursor");
  Value::Object result;
  result.emplace(key, std::move(list));
  request->succeed(std::move(result));
}

Value::Object withoutNulls(Value::Object arguments) {
  std::erase_if(arguments, [](const auto& argument) { return argument.second.isNull(); });
  return arguments;
}

}  // namespace

MCPServer::MCPServer(ServerInfo info, std::optional<ServerCapabilities> capabilities, Logger logger)
    : info_(std::move(info)), capabilities_(std::move(capabilities)), logger_(std::move(logger)) {
  toolRegistry_.notice().onChanged(
      [this] { forEachSession([](Server& session) { session.sendToolListChanged(); }); });
  resourceRegistry_.notice().onChanged(
      [this] { forEachSession([](Server& session) { session.sendResourceListChanged(); }); });
}

void MCPServer::registerTool(const std::shared_ptr<Tool>& tool) {
  validateAndWarnToolName(tool->definition().name, logger_);
  toolRegistry_.add(tool);
}

void MCPServer::registerResource(std::string uri, ResourceDescription description, ResourceReader reader) {
  resourceRegistry_.add(std::move(uri), std::move(description), std::move(reader));
}

void MCPServer::registerResourceTemplate(std::string uriTemplate, ResourceDescription description,
                                         ResourceReader reader) {
  resourceRegistry_.addTemplate(std::move(uriTemplate), std::move(description), std::move(reader));
}

ServerCapabilities MCPServer::capabilities() const {
  if (capabilities_) return *capabilities_;
  ServerCapabilities offered{.logging = true};
  if (hasTools()) offered.tools = {.listChanged = true};
  if (hasResources()) offered.resources = {.listChanged = true, .subscribe = true};
  if (hasPrompts()) offered.prompts = {.listChanged = true};
  return offered;
}

std::shared_ptr<Server> MCPServer::run(Transport& transport) {
  const auto session = Server::make(info_, capabilities(), ServerConfiguration::standard(), logger_);
  bindMethods(*session);
  std::erase_if(sessions_, [](const auto& each) { return each.expired(); });
  sessions_.push_back(session);
  session->start(transport);
  return session;
}

void MCPServer::bindMethods(Server& session) {
  const auto bind = [&](const char* method, auto handler) {
    session.withRequestHandler(method, std::bind_front(handler, this));
  };
  // clang-format off
  bind("tools/list",               &MCPServer::listTools);
  bind("tools/call",               &MCPServer::callTool);
  bind("resources/list",           &MCPServer::listResources);
  bind("resources/templates/list", &MCPServer::listResourceTemplates);
  bind("resources/read",           &MCPServer::readResource);
  bind("resources/subscribe",      &MCPServer::acknowledge);  // all clients hear of updates
  bind("resources/unsubscribe",    &MCPServer::acknowledge);
  bind("prompts/list",             &MCPServer::listPrompts);
  bind("prompts/get",              &MCPServer::getPrompt);
  // clang-format on
}

void MCPServer::listTools(const std::optional<Value>& params, const RequestContextPtr& request) {
  answerList(params, request, "tools", toolRegistry_.list());
}

void MCPServer::callTool(const std::optional<Value>& params, const RequestContextPtr& request) {
  const Params reader(params, requiredParams);
  const std::string name = reader.text("name");
  ToolRegistry::Entry* entry = toolRegistry_.find(name);
  if (!entry) throw MCPError::invalidParams("Unknown tool: " + name);
  const Value arguments = withoutNulls(reader.optionalObject("arguments"));
  const auto call = std::make_shared<ToolCall>(entry->tool, request);
  const std::string faults = entry->validator.faults(arguments);
  if (!faults.empty()) return call->fail("Input validation error: " + faults);
  try {
    call->tool().call(*arguments.object(), call);
  } catch (const std::exception& error) {
    call->fail(error.what());
  }
}

void MCPServer::listResources(const std::optional<Value>& params, const RequestContextPtr& request) {
  answerList(params, request, "resources", resourceRegistry_.list());
}

void MCPServer::listResourceTemplates(const std::optional<Value>& params, const RequestContextPtr& request) {
  answerList(params, request, "resourceTemplates", resourceRegistry_.listTemplates());
}

void MCPServer::readResource(const std::optional<Value>& params, const RequestContextPtr& request) {
  const std::string uri = Params(params, requiredParams).text("uri");
  auto found = resourceRegistry_.find(uri);
  if (!found) throw MCPError::resourceNotFound(uri);
  const auto read = std::make_shared<ResourceRead>(uri, std::move(found->second), request);
  try {
    found->first(read);
  } catch (const std::exception& error) {
    read->fail(error.what());
  }
}

void MCPServer::acknowledge(const std::optional<Value>& params, const RequestContextPtr& request) {
  Params(params, requiredParams).text("uri");
  request->succeed(Value::Object{});
}

void MCPServer::listPrompts(const std::optional<Value>& params, const RequestContextPtr& request) {
  answerList(params, request, "prompts", Value::Array{});
}

void MCPServer::getPrompt(const std::optional<Value>& params, const RequestContextPtr&) {
  throw MCPError::invalidParams("Unknown prompt: " + Params(params, requiredParams).text("name"));
}

template <class Action>
void MCPServer::forEachSession(Action action) {
  for (const auto& weak : sessions_) {
    if (const auto session = weak.lock()) action(*session);
  }
}

void MCPServer::sendResourceUpdated(const std::string& uri) {
  forEachSession([&uri](Server& session) { session.sendResourceUpdated(uri); });
}

}  // namespace vell::mcp
