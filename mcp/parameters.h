#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "mcp/schema.h"
#include "mcp/value.h"

namespace vell::mcp {

/// The JSON form of an argument of type T: `static Value schema()` describes it, `static T decode(const
/// Value&)` reads a value that fits. Specialise it, or write a type of the same shape, for your own types.
template <class T>
struct Argument;

template <>
struct Argument<std::string> {
  static Value schema() { return schema::string(); }
  static std::string decode(const Value& value) { return *value.string(); }
};

template <>
struct Argument<bool> {
  static Value schema() { return schema::boolean(); }
  static bool decode(const Value& value) { return *value.boolean(); }
};

template <class T>
struct Argument<std::optional<T>> : Argument<T> {};

template <class T>
struct Argument<std::vector<T>> {
  static Value schema() { return schema::arrayOf(Argument<T>::schema()); }
  static std::vector<T> decode(const Value& value) {
    std::vector<T> elements;
    for (const Value& element : *value.array()) elements.push_back(Argument<T>::decode(element));
    return elements;
  }
};

/// A member without value is null.
template <class T>
struct Argument<std::map<std::string, std::optional<T>>> {
  static Value schema() { return schema::mapOf(schema::anyOf({Argument<T>::schema(), schema::null()})); }
  static std::map<std::string, std::optional<T>> decode(const Value& value) {
    std::map<std::string, std::optional<T>> members;
    for (const auto& [key, member] : *value.object()) {
      members[key] = member.isNull() ? std::nullopt : std::optional<T>(Argument<T>::decode(member));
    }
    return members;
  }
};

/// The parameters of a tool, which fill a record. One declaration of each (name, field, description) drives
/// the schema, the messages about faults and the decoding.
template <class Record>
class Parameters {
 public:
  /// `field` is a member pointer, or a function from the record to a reference. `Arg` says how the argument
  /// looks where the field's own type does not.
  template <class Arg = void, class Field>
  Parameters&& required(const std::string& name, Field field, const std::string& description) && {
    required_.push_back(name);
    return std::move(*this).template optional<Arg>(name, field, description);
  }

  template <class Arg = void, class Field>
  Parameters&& optional(const std::string& name, Field field, const std::string& description) && {
    using FieldType = std::remove_reference_t<std::invoke_result_t<Field, Record&>>;
    using Form = std::conditional_t<std::is_void_v<Arg>, Argument<FieldType>, Arg>;
    properties_.emplace(name, schema::described(Form::schema(), description));
    setters_.emplace_back(name, [field](Record& record, const Value& value) {
      std::invoke(field, record) = Form::decode(value);
    });
    return std::move(*this);
  }

  Value schema() const { return schema::object(properties_, required_); }

  /// For arguments that satisfy the schema.
  Record decode(const Value::Object& arguments) const {
    Record record;
    for (const auto& [name, set] : setters_) {
      if (const auto argument = arguments.find(name); argument != arguments.end())
        set(record, argument->second);
    }
    return record;
  }

 private:
  Value::Object properties_;
  std::vector<std::string> required_;
  std::vector<std::pair<std::string, std::function<void(Record&, const Value&)>>> setters_;
};

}  // namespace vell::mcp
