#include "mcp/resource.h"

#include <algorithm>

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
  if (!request_->isCancelled())
    request_->log(LogLevel::error, "Error reading resource", {{"uri", uri_}, {"error", description}});
  request_->fail(MCPError::internalError("Error reading resource " + uri_ + ": " + description));
}

static Value listed(const char* key, const std::string& uri, const ResourceDescription& description) {
  Value::Object object{{key, uri}, {"name", description.name}};
  if (description.title) object.emplace("title", *description.title);
  if (description.description) object.emplace("description", *description.description);
  if (description.mimeType) object.emplace("mimeType", *description.mimeType);
  return object;
}

void ResourceRegistry::add(std::string uri, ResourceDescription description, ResourceReader reader) {
  Resource resource{std::move(uri), std::move(description), std::move(reader)};
  const auto existing = std::find_if(resources_.begin(), resources_.end(),
                                     [&](const Resource& each) { return each.uri == resource.uri; });
  if (existing == resources_.end()) {
    resources_.push_back(std::move(resource));
  } else {
    *existing = std::move(resource);
  }
  notice_.changed();
}

void ResourceRegistry::addTemplate(std::string uriTemplate, ResourceDescription description,
                                   ResourceReader reader) {
  templates_.push_back({UriTemplate(std::move(uriTemplate)), std::move(description), std::move(reader)});
  notice_.changed();
}

bool ResourceRegistry::remove(std::string_view uri) {
  const auto removed = std::remove_if(resources_.begin(), resources_.end(),
                                      [uri](const Resource& each) { return each.uri == uri; });
  if (removed == resources_.end()) return false;
  resources_.erase(removed, resources_.end());
  notice_.changed();
  return true;
}

std::optional<std::pair<ResourceReader, UriTemplate::Variables>> ResourceRegistry::find(
    const std::string& uri) const {
  for (const Resource& resource : resources_) {
    if (resource.uri == uri) return std::pair(resource.reader, UriTemplate::Variables{});
  }
  for (const Template& candidate : templates_) {
    if (auto variables = candidate.uri.match(uri)) return std::pair(candidate.reader, std::move(*variables));
  }
  return std::nullopt;
}

Value ResourceRegistry::list() const {
  Value::Array list;
  for (const Resource& each : resources_) list.push_back(listed("uri", each.uri, each.description));
  return list;
}

Value ResourceRegistry::listTemplates() const {
  Value::Array list;
  for (const Template& each : templates_)
    list.push_back(listed("uriTemplate", each.uri.text(), each.description));
  return list;
}

}  // namespace vell::mcp
