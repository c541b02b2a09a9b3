#include "mcp/mcp_server.h"

#include "mcp/params.h"
#include "mcp/tool_registry.h"

namespace vell::mcp {

namespace {

constexpr auto optionalParams = Params::Presence::optional;
constexpr auto requiredParams = Params::Presence::required;

/// Answers a list method, whose only parameter asks for a later page: there is never one.
Server::RequestHandler answering(const char* key, std::function<Value()> list) {
  return [key, list = std::move(list)](const auto& params, const RequestContextPtr& request) {
    Params(params, optionalParams).optionalText("cursor");
    Value::Object result;
    result.emplace(key, list());
    request->succeed(std::move(result));
  };
}

Value::Object withoutNulls(Value::Object arguments) {
  std::erase_if(arguments, [](const auto& argument) { return argument.second.isNull(); });
  return arguments;
}

}  // namespace

MCPServer::MCPServer(ServerInfo info, std::optional<ServerCapabilities> capabilities, Logger logger)
    : info_(std::move(info)), capabilities_(capabilities), logger_(std::move(logger)) {
  tools_.notice().onChanged(
      [this] { forEachSession([](Server& session) { session.sendToolListChanged(); }); });
  resources_.notice().onChanged(
      [this] { forEachSession([](Server& session) { session.sendResourceListChanged(); }); });
}

void MCPServer::registerTool(const std::shared_ptr<Tool>& tool) {
  const std::string& name = tool->definition().name;
  const auto findings = validateToolName(name);
  if (!findings.empty()) logger_.log(LogLevel::warning, toolNameWarning(name, findings));
  tools_.add(tool);
}

void MCPServer::registerResource(std::string uri, ResourceDescription description, ResourceReader reader) {
  resources_.add(std::move(uri), std::move(description), std::move(reader));
}

void MCPServer::registerResourceTemplate(std::string uriTemplate, ResourceDescription description,
                                         ResourceReader reader) {
  resources_.addTemplate(std::move(uriTemplate), std::move(description), std::move(reader));
}

ServerCapabilities MCPServer::capabilities() const {
  if (capabilities_) return *capabilities_;
  return {.logging = true, .tools = hasTools(), .resources = hasResources(), .prompts = hasPrompts()};
}

std::shared_ptr<Server> MCPServer::run(Transport& transport) {
  const auto session = Server::make(info_, capabilities(), ServerConfiguration::standard(), logger_);
  bindTools(*session);
  bindResources(*session);
  bindPrompts(*session);
  std::erase_if(sessions_, [](const auto& each) { return each.expired(); });
  sessions_.push_back(session);
  session->start(transport);
  return session;
}

void MCPServer::bindTools(Server& session) {
  session.withRequestHandler("tools/list", answering("tools", [this] {
                               Value::Array list;
                               for (const auto& entry : tools_.entries())
                                 list.push_back(entry.tool->definition().toValue());
                               return Value(std::move(list));
                             }));
  session.withRequestHandler("tools/call", [this](const auto& params, const RequestContextPtr& request) {
    callTool(params, request);
  });
}

void MCPServer::bindResources(Server& session) {
  const auto acknowledge = [](const auto& params, const RequestContextPtr& request) {
    Params(params, requiredParams).text("uri");
    request->succeed(Value::Object{});
  };
  session.withRequestHandler("resources/list", answering("resources", [this] { return resources_.list(); }));
  session.withRequestHandler("resources/templates/list",
                             answering("resourceTemplates", [this] { return resources_.listTemplates(); }));
  session.withRequestHandler("resources/read", [this](const auto& params, const RequestContextPtr& request) {
    readResource(params, request);
  });
  // Notices of updated resources go to every client.
  session.withRequestHandler("resources/subscribe", acknowledge);
  session.withRequestHandler("resources/unsubscribe", acknowledge);
}

void MCPServer::bindPrompts(Server& session) {
  session.withRequestHandler("prompts/list", answering("prompts", [] { return Value::Array{}; }));
  session.withRequestHandler("prompts/get", [](const auto& params, const RequestContextPtr&) {
    throw MCPError::invalidParams("Unknown prompt: " + Params(params, requiredParams).text("name"));
  });
}

void MCPServer::callTool(const std::optional<Value>& params, const RequestContextPtr& request) {
  const Params reader(params, requiredParams);
  const std::string name = reader.text("name");
  ToolRegistry::Entry* entry = tools_.find(name);
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

void MCPServer::readResource(const std::optional<Value>& params, const RequestContextPtr& request) {
  const std::string uri = Params(params, requiredParams).text("uri");
  auto found = resources_.find(uri);
  if (!found) throw MCPError::resourceNotFound(uri);
  const auto read = std::make_shared<ResourceRead>(uri, std::move(found->second), request);
  try {
    found->first(read);
  } catch (const std::exception& error) {
    read->fail(error.what());
  }
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
