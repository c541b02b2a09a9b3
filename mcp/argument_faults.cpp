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
  const Value* any = schema.find("anyOf");
  if (!any || !any->array()) return typeOf(schema) == type;
  const auto& alternatives = *any->array();
  return std::any_of(alternatives.begin(), alternatives.end(),
                     [type](const Value& each) { return accepts(each, type); });
}

/// The value of a string that holds JSON text; null for other strings.
Value spelledOut(const std::string& text) {
  try {
    return decode(text);
  } catch (const json::ParseError&) {
    return nullptr;
  }
}

bool fits(const Value& schema, const Value& value);

std::string advice(const Value& schema, const Value& instead) {
  return fits(schema, instead) ? " (write " + encode(instead) + ")" : "";
}

/// A list of one for a single value. A reference to a row may be a number, but no fraction and no boolean.
std::string repairToList(const Value& schema, const Value& value) {
  if (value.integer()) return advice(schema, Value::Array{encode(value)});
  const bool isShort = value.string() && value.string()->size() <= longestShown;
  return isShort ? advice(schema, Value::Array{value}) : "";
}

/// What to write instead, where that is known and free of further faults; begins with a blank or a colon.
std::string repair(const Value& schema, const Value& value, bool inList) {
  const bool isNumber = value.integer() || value.number();
  // A number in the place of a text. Where whole numbers fit as they are, the text would not be any text.
  const bool isText = accepts(schema, "string") && !accepts(schema, "integer");
  if (isText && (inList ? value.integer() != nullptr : isNumber || value.boolean())) {
    return advice(schema, encode(value));
  }
  const Value meant = value.string() ? spelledOut(*value.string()) : Value();
  if (meant.array() && fits(schema, meant))
    return ": a list written as a JSON string (pass the array itself)";
  if (meant.object() && fits(schema, meant))
    return ": an object written as a JSON string (pass the object itself)";
  if (meant.integer() || meant.boolean()) {
    if (const std::string unquoted = advice(schema, meant); !unquoted.empty()) return unquoted;
  }
  return meant.array() || meant.object() ? "" : repairToList(schema, value);
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
  /// Whether a mismatch names what to write instead.
  explicit Explainer(bool advises) : advises_(advises) {}

  void check(const Value& schema, const Value& value, const std::string& place) {
    if (const Value* any = schema.find("anyOf"); any && any->array())
      return checkAlternatives(schema, *any->array(), value, place);
    const std::string type = typeOf(schema);
    if (!type.empty() && !fitsType(value, type)) return mismatch(schema, value, place);
    if (const Value* accepted = schema.find("enum"); accepted && accepted->array())
      checkEnum(schema, *accepted->array(), value, place);
    if (value.array()) checkElements(schema, *value.array(), place);
    if (value.object()) checkMembers(schema, *value.object(), place);
  }

  std::string text() const {
    const std::size_t more = faults_ > mostShown ? faults_ - mostShown : 0;
    return more == 0 ? text_ : text_ + "\nand " + std::to_string(more) + " more";
  }

 private:
  static constexpr std::size_t mostShown = 10;

  void add(const std::string& fault) {
    if (++faults_ <= mostShown) text_ += (text_.empty() ? "" : "\n") + fault;
  }

  void mismatch(const Value& schema, const Value& value, const std::string& place) {
    const bool inList = place.ends_with(']');
    add(place + ": expected " + schema::describe(schema) + ", got " + shown(value) +
        (advises_ ? repair(schema, value, inList) : ""));
  }

  void checkAlternatives(const Value& schema, const Value::Array& alternatives, const Value& value,
                         const std::string& place) {
    for (const Value& alternative : alternatives) {
      if (fitsType(value, typeOf(alternative))) return check(alternative, value, place);
    }
    mismatch(schema, value, place);
  }

  void checkEnum(const Value& schema, const Value::Array& accepted, const Value& value,
                 const std::string& place) {
    if (std::find(accepted.begin(), accepted.end(), value) != accepted.end()) return;
    add(place + ": expected " + schema::describe(schema) + ", got " + shown(value) +
        (value.string() ? suggestion(*value.string(), textsOf(schema.find("enum"))) : ""));
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
        unknown(properties, name, inner);
      }
    }
  }

  void unknown(const Value* properties, const std::string& name, const std::string& place) {
    std::vector<std::string> known;
    if (properties && properties->object()) {
      for (const auto& property : *properties->object()) known.push_back(property.first);
    }
    const std::string accepted = known.empty() ? "none" : schema::listOf(known, "and");
    add(place + ": unknown parameter (accepted: " + accepted + ")" + suggestion(name, known));
  }

  bool advises_;
  std::size_t faults_ = 0;
  std::string text_;
};

bool fits(const Value& schema, const Value& value) {
  Explainer explainer(false);
  explainer.check(schema, value, "");
  return explainer.text().empty();
}

}  // namespace

std::string explainFaults(const Value& schema, const Value& arguments) {
  Explainer explainer(true);
  explainer.check(schema, arguments, "");
  return explainer.text();
}

}  // namespace vell::mcp
