#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "json/document.h"
#include "json/error.h"

namespace vell::mcp {

/// Bytes that travel as a data URL. Only programs make them: text is never decoded to this.
struct Data {
  std::optional<std::string> mimeType;  // written as text/plain where absent
  std::string bytes;

  friend bool operator==(const Data& a, const Data& b) {
    return a.mimeType == b.mimeType && a.bytes == b.bytes;
  }
};

/// A JSON value of any kind. Equality is by kind and content: 1 and 1.0 differ.
class Value {
 public:
  using Array = std::vector<Value>;
  using Object = std::map<std::string, Value, std::less<>>;
  /// In the order of the alternatives below.
  enum class Kind { boolean, integer, number, string, data, array, object, null };

  Value() : content_(nullptr) {}
  Value(std::nullptr_t) : content_(nullptr) {}
  Value(std::same_as<bool> auto value) : content_(value) {}
  Value(int value) : content_(std::int64_t{value}) {}
  Value(std::int64_t value) : content_(value) {}
  Value(double value) : content_(value) {}
  Value(const char* value) : content_(std::string(value)) {}
  Value(std::string_view value) : content_(std::string(value)) {}
  Value(std::string value) : content_(std::move(value)) {}
  Value(Data value) : content_(std::move(value)) {}
  Value(Array value) : content_(std::move(value)) {}
  Value(Object value) : content_(std::move(value)) {}

  Kind kind() const { return static_cast<Kind>(content_.index()); }
  bool isNull() const { return kind() == Kind::null; }

  /// The content where the value is of that kind, else null. Valid until the value changes.
  const bool* boolean() const { return std::get_if<bool>(&content_); }
  const std::int64_t* integer() const { return std::get_if<std::int64_t>(&content_); }
  const double* number() const { return std::get_if<double>(&content_); }
  const std::string* string() const { return std::get_if<std::string>(&content_); }
  const Data* data() const { return std::get_if<Data>(&content_); }
  const Array* array() const { return std::get_if<Array>(&content_); }
  const Object* object() const { return std::get_if<Object>(&content_); }
  Array* array() { return std::get_if<Array>(&content_); }
  Object* object() { return std::get_if<Object>(&content_); }

  /// The integer of a whole number: 3 and 3.0. None for other kinds, fractions and doubles from 2^53 on,
  /// which stand for several integers.
  std::optional<std::int64_t> asInteger() const;

  /// An object's member of that name; null for other kinds and other names.
  const Value* find(std::string_view key) const;

  /// The value as compact JSON, for log lines.
  std::string description() const;
  std::size_t hash() const;

  /// Calls the visitor with the content, of one of the types above; nullptr_t for null.
  template <class Visitor>
  decltype(auto) visit(Visitor&& visitor) const {
    return std::visit(std::forward<Visitor>(visitor), content_);
  }

  friend bool operator==(const Value& a, const Value& b) { return a.content_ == b.content_; }

 private:
  std::variant<bool, std::int64_t, double, std::string, Data, Array, Object, std::nullptr_t> content_;
};

/// Levels of nesting beyond which a value is refused.
inline constexpr int maxDepth = 1000;

/// The value that a node stands for. Throws json::ParseError for what no Value can hold: more than maxDepth
/// levels, a number beyond the range of doubles.
Value decode(const json::Node& node);
/// The value of a whole text. Throws json::ParseError.
Value decode(std::string_view text);

/// Compact JSON on one line, keys in byte order; what json::Writer makes of numbers and bad bytes.
std::string encode(const Value& value);

/// The bytes in base64, padded.
std::string base64(std::string_view bytes);

}  // namespace vell::mcp

template <>
struct std::hash<vell::mcp::Value> {
  std::size_t operator()(const vell::mcp::Value& value) const { return value.hash(); }
};
