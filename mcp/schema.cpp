#include "mcp/schema.h"

namespace vell::mcp::schema {

static Value typed(const char* type) { return Value::Object{{"type", type}}; }

static Value::Array texts(const std::vector<std::string>& list) { return {list.begin(), list.end()}; }

Value string() { return typed("string"); }
Value integer() { return typed("integer"); }
Value boolean() { return typed("boolean"); }
Value null() { return typed("null"); }

Value oneOf(const std::vector<std::string>& list) {
  return Value::Object{{"type", "string"}, {"enum", texts(list)}};
}

Value arrayOf(Value items) { return Value::Object{{"type", "array"}, {"items", std::move(items)}}; }

Value mapOf(Value members) {
  return Value::Object{{"type", "object"}, {"additionalProperties", std::move(members)}};
}

Value anyOf(std::vector<Value> alternatives) { return Value::Object{{"anyOf", std::move(alternatives)}}; }

Value object(Value::Object properties, const std::vector<std::string>& required, bool open) {
  Value::Object schema{
      {"type", "object"}, {"properties", std::move(properties)}, {"required", texts(required)}};
  if (!open) schema.emplace("additionalProperties", false);
  return schema;
}

Value described(Value schema, const std::string& description) {
  schema.object()->emplace("description", description);
  return schema;
}

std::string listOf(const std::vector<std::string>& texts, const std::string& conjunction) {
  std::string list;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const bool last = i + 1 == texts.size();
    list += (i == 0 ? "" : last ? " " + conjunction + " " : ", ") + texts[i];
  }
  return list;
}

static std::string plural(const std::string& description) {
  const std::size_t space = description.find(' ');
  return description.compare(0, 1, "a") == 0 && space != std::string::npos
             ? description.substr(space + 1) + "s"
             : description;
}

std::string describe(const Value& schema) {
  std::vector<std::string> alternatives;
  if (const Value* any = schema.find("anyOf"); any && any->array()) {
    for (const Value& alternative : *any->array()) alternatives.push_back(describe(alternative));
    return listOf(alternatives, "or");
  }
  if (const Value* accepted = schema.find("enum"); accepted && accepted->array()) {
    for (const Value& value : *accepted->array()) {
      alternatives.push_back(value.string() ? "'" + *value.string() + "'" : encode(value));
    }
    return listOf(alternatives, "or");
  }
  const Value* type = schema.find("type");
  const std::string name = type && type->string() ? *type->string() : "value";
  if (const Value* items = schema.find("items"); items && name == "array") {
    return "an array of " + plural(describe(*items));
  }
  if (name == "null") return name;
  return (std::string("aeiou").find(name[0]) == std::string::npos ? "a " : "an ") + name;
}

}  // namespace vell::mcp::schema
