#include "mcp/resource.h"

#include "mcp/base64.h"

namespace vell::mcp {

Value ResourceContents::toValue() && {
  Value::Object object{{"uri", uri}};
  if (mimeType) object.emplace("mimeType", *mimeType);
  if (isBlob) {
    object.emplace("blob", base64(text));
  } else {
    object.emplace("text", std::move(text));
  }
  return object;
}

std::optional<std::string> ResourceRead::variable(const std::string& name) const {
  const auto variable = variables_.find(name);
  return variable == variables_.end() ? std::nullopt : std::optional(variable->second);
}

void ResourceRead::answer(ResourceContents contents) {
  Value::Array items;
  items.push_back(std::move(contents).toValue());
  Value::Object result;
  result.emplace("contents", std::move(items));
  request_->succeed(std::move(result));
}

void ResourceRead::fail(const std::string& description) {
  request_->log(LogLevel::error, "Error reading resource", {{"uri", uri_}, {"error", description}});
  request_->fail(MCPError::internalError("Error reading resource " + uri_ + ": " + description));
}

}  // namespace vell::mcp
