#include <algorithm>
#include <vector>

#include "mcp/argument_validator.h"
#include "mcp/schema.h"
#include "text/edit_distance.h"

namespace vell::mcp {

namespace {

constexpr std::size_t longestShown = 60;

std::string typeOf(const Value& schema) {
  const Value* type = schema.find("type");
  return type && type->string() ? *type->string() : "";
}

bool fitsType(const Value& value, const std::string& type) {
  switch (value.kind()) {
    case Value::Kind::boolean:
      return type == "boolean";
    case Value::Kind::integer:
      return type == "integer" || type == "number";
    case Value::Kind::number:
      return type == "number" || (type == "integer" && value.asInteger());
    case Value::Kind::array:
      return type == "array";
    case Value::Kind::object:
      return type == "object";
    case Value::Kind::null:
      return type == "null";
    default:
      return type == "string";
  }
}

/// The value as it stands in a message: "the number 12", "the string \"…\"", "an array".
std::string shown(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::array:
      return "an array";
    case Value::Kind::object:
      return "an object";
    case Value::Kind::null:
      return "null";
    case Value::Kind::boolean:
      return encode(value);
    case Value::Kind::integer:
    case Value::Kind::number:
      return "the number " + encode(value);
    default:
      break;
  }
  const std::string text = encode(value);
  return text.size() > longestShown ? "a long string" : "the string " + text;
}

bool accepts(const Value& schema, const char* type) {
  if (const Value* any = schema.find("anyOf")) {
    const auto& alternatives = *any->array();
    return std::any_of(alternatives.begin(), alternatives.end(),
                       [type](const Value& each) { return accepts(each, type); });
  }
  return typeOf(schema) == type;
}

/// The value of a string that holds JSON text; null for other strings.
Value spelledOut(const std::string& text) {
  try {
    return decode(text);
  } catch (const json::ParseError&) {
    return nullptr;
  }
}

/// What to write instead, where that is known; begins with a blank or a colon.
std::string repair(const Value& schema, const Value& value) {
  if (schema.find("enum")) return "";
  const bool isScalar = value.boolean() || value.integer() || value.number();
  if (accepts(schema, "string") && isScalar) return " (write \"" + encode(value) + "\")";
  if (accepts(schema, "array") && isScalar) return " (write [\"" + encode(value) + "\"])";
  if (!value.string()) return "";
  const Value meant = spelledOut(*value.string());
  if (meant.array() && accepts(schema, "array"))
    return ": a list written as a JSON string (pass the array itself)";
  if (meant.object() && accepts(schema, "object"))
    return ": an object written as a JSON string (pass the object itself)";
  if (accepts(schema, "array") && value.string()->size() <= longestShown)
    return " (write [" + encode(value) + "])";
  const bool unquoted =
      (meant.integer() && accepts(schema, "integer")) || (meant.boolean() && accepts(schema, "boolean"));
  return unquoted ? " (write " + encode(meant) + ")" : "";
}

std::string suggestion(const std::string& name, const std::vector<std::string>& candidates) {
  const std::vector<std::string_view> words(candidates.begin(), candidates.end());
  const std::string_view near = text::nearest(name, words);
  return near.empty() ? "" : "; did you mean '" + std::string(near) + "'?";
}

std::vector<std::string> textsOf(const Value* array) {
  std::vector<std::string> texts;
  if (!array || !array->array()) return texts;
  for (const Value& each : *array->array()) {
    if (each.string()) texts.push_back(*each.string());
  }
  return texts;
}

class Explainer {
 public:
  void check(const Value& schema, const Value& value, const std::string& place) {
    if (const Value* any = schema.find("anyOf"))
      return checkAlternatives(schema, *any->array(), value, place);
    const std::string type = typeOf(schema);
    if (!type.empty() && !fitsType(value, type)) return mismatch(schema, value, place);
    if (schema.find("enum")) checkNamed(schema, value, place);
    if (value.array()) checkElements(schema, *value.array(), place);
    if (value.object()) checkMembers(schema, *value.object(), place);
  }

  std::string text() const { return text_; }

 private:
  void add(const std::string& fault) { text_ += (text_.empty() ? "" : "\n") + fault; }

  void mismatch(const Value& schema, const Value& value, const std::string& place) {
    add(place + ": expected " + schema::describe(schema) + ", got " + shown(value) + repair(schema, value));
  }

  void checkAlternatives(const Value& schema, const Value::Array& alternatives, const Value& value,
                         const std::string& place) {
    for (const Value& alternative : alternatives) {
      if (fitsType(value, typeOf(alternative))) return check(alternative, value, place);
    }
    mismatch(schema, value, place);
  }

  void checkNamed(const Value& schema, const Value& value, const std::string& place) {
    const auto accepted = textsOf(schema.find("enum"));
    if (!value.string() || std::find(accepted.begin(), accepted.end(), *value.string()) != accepted.end())
      return;
    add(place + ": expected " + schema::describe(schema) + ", got " + shown(value) +
        suggestion(*value.string(), accepted));
  }

  void checkElements(const Value& schema, const Value::Array& elements, const std::string& place) {
    const Value* items = schema.find("items");
    for (std::size_t i = 0; items && i < elements.size(); ++i) {
      check(*items, elements[i], place + "[" + std::to_string(i) + "]");
    }
  }

  void checkMembers(const Value& schema, const Value::Object& members, const std::string& place) {
    for (const std::string& name : textsOf(schema.find("required"))) {
      if (!members.count(name))
        add(place.empty() ? "Missing required parameter '" + name + "'" : place + ": missing '" + name + "'");
    }
    const Value* properties = schema.find("properties");
    const Value* others = schema.find("additionalProperties");
    for (const auto& [name, member] : members) {
      const std::string inner = place.empty() ? name : place + "." + name;
      const Value* property = properties ? properties->find(name) : nullptr;
      if (property || (others && others->object())) {
        check(property ? *property : *others, member, inner);
      } else if (others && others->boolean() && !*others->boolean()) {
        unknown(*properties, name, inner);
      }
    }
  }

  void unknown(const Value& properties, const std::string& name, const std::string& place) {
    std::vector<std::string> known;
    for (const auto& property : *properties.object()) known.push_back(property.first);
    const std::string accepted = known.empty() ? "none" : schema::listOf(known, "and");
    add(place + ": unknown parameter (accepted: " + accepted + ")" + suggestion(name, known));
  }

  std::string text_;
};

}  // namespace

std::string explainFaults(const Value& schema, const Value& arguments) {
  Explainer explainer;
  explainer.check(schema, arguments, "");
  return explainer.text();
}

}  // namespace vell::mcp
