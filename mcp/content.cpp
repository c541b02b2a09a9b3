#include "mcp/content.h"

#include <algorithm>
#include <array>

#include "mcp/base64.h"

namespace vell::mcp::content {

static Value media(const char* type, const std::string& data, const std::string& mimeType) {
  return Value::Object{{"type", type}, {"data", base64(data)}, {"mimeType", mimeType}};
}

Value text(std::string text) {
  Value::Object block{{"type", "text"}};
  block.emplace("text", std::move(text));
  return block;
}

void appendText(const ValueWriter& writeText, std::string& out) {
  out += R"({"text":)";
  writeText(out);
  out += R"(,"type":"text"})";
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
    throw DecodeError("Unknown content block type: " + name);
  }
}

}  // namespace vell::mcp::content
