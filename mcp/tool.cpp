#include "mcp/tool.h"

#include "mcp/content.h"

namespace vell::mcp {

namespace {

template <class Field>
void addIfPresent(Value::Object& object, const char* key, const std::optional<Field>& field) {
  if (field) object.emplace(key, *field);
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
  if (annotations) object.emplace("annotations", annotations->toValue());
  return object;
}

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
  return object;
}

void ToolCall::answer(CallToolResult result) {
  if (!result.isError && !result.structuredContent && !mayLackStructure()) return;
  request_->succeed(std::move(result).toValue());
}

void ToolCall::answerText(const ValueWriter& writeText) {
  if (!mayLackStructure()) return;
  request_->succeed([&writeText](std::string& line) {
    line += R"({"content":[)";
    content::appendText(writeText, line);
    line += "]}";
  });
}

bool ToolCall::mayLackStructure() {
  const ToolDefinition& definition = tool_->definition();
  if (!definition.outputSchema) return true;
  request_->fail(MCPError::invalidParams("Tool '" + definition.name +
                                         "' has an output schema but no structured content was provided"));
  return false;
}

}  // namespace vell::mcp
