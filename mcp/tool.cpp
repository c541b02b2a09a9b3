#include "mcp/tool.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace vell::mcp {

namespace {

template <class Field>
void addIfPresent(Value::Object& object, const char* key, const std::optional<Field>& field) {
  if (field) object.emplace(key, *field);
}

const char* nameOf(TaskSupport support) {
  static constexpr const char* names[] = {"required", "optional", "forbidden"};
  return names[static_cast<std::size_t>(support)];
}

}  // namespace

Value ToolAnnotations::toValue() const {
  Value::Object object;
  addIfPresent(object, "title", title);
  addIfPresent(object, "readOnlyHint", readOnlyHint);
  addIfPresent(object, "destructiveHint", destructiveHint);
  addIfPresent(object, "idempotentHint", idempotentHint);
  addIfPresent(object, "openWorldHint", openWorldHint);
  return object;
}

Value ToolDefinition::toValue() const {
  Value::Object object{{"name", name}, {"inputSchema", inputSchema}};
  addIfPresent(object, "title", title);
  addIfPresent(object, "description", description);
  addIfPresent(object, "outputSchema", outputSchema);
  addIfPresent(object, "_meta", meta);
  addIfPresent(object, "icons", icons);
  if (taskSupport) object.emplace("execution", Value::Object{{"taskSupport", nameOf(*taskSupport)}});
  if (annotations) object.emplace("annotations", annotations->toValue());
  return object;
}

namespace content {

static Value media(const char* type, const std::string& data, const std::string& mimeType) {
  return Value::Object{{"type", type}, {"data", base64(data)}, {"mimeType", mimeType}};
}

Value text(std::string text) {
  Value::Object block{{"type", "text"}};
  block.emplace("text", std::move(text));
  return block;
}

Value image(const std::string& data, const std::string& mimeType) { return media("image", data, mimeType); }

Value audio(const std::string& data, const std::string& mimeType) { return media("audio", data, mimeType); }

Value resource(Value contents) {
  return Value::Object{{"type", "resource"}, {"resource", std::move(contents)}};
}

Value resourceLink(Value::Object reference) {
  reference["type"] = "resource_link";
  return reference;
}

void check(const Value& block) {
  static constexpr std::array types{"text", "image", "audio", "resource", "resource_link"};
  const Value* type = block.find("type");
  const std::string name = type && type->string() ? *type->string() : "";
  if (std::find(types.begin(), types.end(), name) == types.end()) {
    throw std::invalid_argument("Unknown content block type: " + name);
  }
}

}  // namespace content

CallToolResult CallToolResult::text(std::string text) {
  CallToolResult result;
  result.content.push_back(content::text(std::move(text)));
  return result;
}

CallToolResult CallToolResult::error(std::string description) {
  CallToolResult result = text(std::move(description));
  result.isError = true;
  return result;
}

Value CallToolResult::toValue() && {
  Value::Object object;
  object.emplace("content", std::move(content));
  if (structuredContent) object.emplace("structuredContent", std::move(*structuredContent));
  if (isError) object.emplace("isError", true);
  addIfPresent(object, "_meta", meta);
  return object;
}

void ToolCall::answer(CallToolResult result) {
  const ToolDefinition& definition = tool_->definition();
  if (definition.outputSchema && !result.isError && !result.structuredContent) {
    return request_->fail(MCPError::invalidParams(
        "Tool '" + definition.name + "' has an output schema but no structured content was provided"));
  }
  request_->succeed(std::move(result).toValue());
}

}  // namespace vell::mcp
