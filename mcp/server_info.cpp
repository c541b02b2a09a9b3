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

Value ServerCapabilities::toValue() const {
  const Value::Object changing{{"listChanged", true}};
  Value::Object object;
  if (logging) object.emplace("logging", Value::Object{});
  if (tools) object.emplace("tools", changing);
  if (prompts) object.emplace("prompts", changing);
  if (resources) object.emplace("resources", Value::Object{{"listChanged", true}, {"subscribe", true}});
  return object;
}

}  // namespace vell::mcp
