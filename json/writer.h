#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "json/escapes.h"

namespace vell::json {

/// Appends one JSON text without blanks to a string. Members stand in the order in which they are written:
/// the caller sorts them. Commas come of themselves; whether brackets match and each key has a value is not
/// checked.
class Writer {
 public:
  explicit Writer(std::string& out) : out_(out) {}

  Writer& beginObject() { return begin('{'); }
  Writer& endObject() { return end('}'); }
  Writer& beginArray() { return begin('['); }
  Writer& endArray() { return end(']'); }

  Writer& key(std::string_view key);

  Writer& value(std::string_view text);
  Writer& value(const char* text) { return value(std::string_view(text)); }
  template <std::integral Integer>
  Writer& value(Integer integer) {
    if constexpr (std::same_as<Integer, bool>) return raw(integer ? "true" : "false");
    return raw(std::to_string(integer));
  }
  /// 1.0, 0.1, 1e+100; null where the number is not finite.
  Writer& value(double number);
  Writer& value(std::nullptr_t) { return raw("null"); }
  /// Null where there is none.
  template <class Value>
  Writer& value(const std::optional<Value>& optional) {
    return optional ? value(*optional) : value(nullptr);
  }
  /// A value that is JSON text already.
  Writer& raw(std::string_view json);

  template <class Value>
  Writer& member(std::string_view name, const Value& content) {
    return key(name).value(content);
  }
  template <class Values>
  Writer& array(const Values& values) {
    beginArray();
    for (const auto& each : values) value(each);
    return endArray();
  }

 private:
  Writer& begin(char bracket);
  Writer& end(char bracket);
  void separate();

  std::string& out_;
  bool needsComma_ = false;  // a value stands before the next one in the same container
};

}  // namespace vell::json
