#include "mcp/server_info.h"

namespace vell::mcp {

Value ServerInfo::toValue() const {
  Value::Object object{{"name", name}, {"version", version}};
  if (title) object.emplace("title", *title);
  if (description) object.emplace("description", *description);
  if (icons) object.emplace("icons", *icons);
  if (websiteUrl) object.emplace("websiteUrl", *websiteUrl);
  return object;
}

namespace {

void addFlag(Value::Object& object, const char* key, bool flag) {
  if (flag) object.emplace(key, true);
}

Value valueOf(const ServerCapabilities::List& list) {
  Value::Object object;
  addFlag(object, "listChanged", list.listChanged);
  return object;
}

Value valueOf(const ServerCapabilities::Resources& resources) {
  Value::Object object;
  addFlag(object, "listChanged", resources.listChanged);
  addFlag(object, "subscribe", resources.subscribe);
  return object;
}

}  // namespace

Value ServerCapabilities::toValue() const {
  Value::Object object;
  if (tools) object.emplace("tools", valueOf(*tools));
  if (resources) object.emplace("resources", valueOf(*resources));
  if (prompts) object.emplace("prompts", valueOf(*prompts));
  if (logging) object.emplace("logging", Value::Object{});
  if (completions) object.emplace("completions", Value::Object{});
  if (tasks) object.emplace("tasks", *tasks);
  if (experimental) object.emplace("experimental", *experimental);
  return object;
}

}  // namespace vell::mcp
