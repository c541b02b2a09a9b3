#include <simdjson.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

#include "mcp/value.h"

namespace vell::mcp {

namespace {

using nlohmann::json;

/// Builds the value from the reader's events; the reader itself keeps no stack of calls.
class Builder : public nlohmann::json_sax<json> {
 public:
  bool null() override { return put(nullptr); }
  bool boolean(bool value) override { return put(value); }
  bool number_integer(number_integer_t value) override { return put(std::int64_t{value}); }
  bool number_unsigned(number_unsigned_t value) override {
    const bool fits = value <= static_cast<number_unsigned_t>(INT64_MAX);
    return put(fits ? Value(static_cast<std::int64_t>(value)) : Value(static_cast<double>(value)));
  }
  bool number_float(number_float_t value, const string_t&) override { return put(value); }
  bool string(string_t& value) override { return put(std::move(value)); }
  bool binary(binary_t&) override { return false; }

  bool start_object(std::size_t) override { return open(Value::Object{}); }
  bool start_array(std::size_t) override { return open(Value::Array{}); }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }
  bool key(string_t& key) override {
    key_ = std::move(key);
    return true;
  }

  bool parse_error(std::size_t position, const std::string&, const json::exception& error) override {
    const std::string text = error.what();
    const std::size_t reason = text.rfind("; last read");
    const std::size_t start = text.find(": ") == std::string::npos ? 0 : text.find(": ") + 2;
    throw DecodeError("at byte " + std::to_string(position) + ": " + text.substr(start, reason - start));
  }

  Value take() { return std::move(root_); }

 private:
  Value* slot() {
    if (open_.empty()) return &root_;
    if (Value::Array* array = open_.back()->array()) return &array->emplace_back();
    return &(*open_.back()->object())[std::move(key_)];
  }

  bool put(Value value) {
    *slot() = std::move(value);
    return true;
  }

  bool open(Value container) {
    if (open_.size() == maxDepth) {
      throw DecodeError("nested deeper than " + std::to_string(maxDepth) + " levels");
    }
    Value* place = slot();
    *place = std::move(container);
    open_.push_back(place);
    return true;
  }

  bool close() {
    open_.pop_back();
    return true;
  }

  Value root_;
  std::vector<Value*> open_;
  std::string key_;
};

namespace dom = simdjson::dom;

Value valueOf(const dom::element& element) {
  switch (element.type()) {
    case dom::element_type::OBJECT: {
      Value::Object object;
      for (const auto [key, member] : dom::object(element)) object[std::string(key)] = valueOf(member);
      return object;
    }
    case dom::element_type::ARRAY: {
      Value::Array array;
      for (const dom::element each : dom::array(element)) array.push_back(valueOf(each));
      return array;
    }
    case dom::element_type::STRING:
      return std::string_view(element);
    case dom::element_type::INT64:
      return std::int64_t(element);
    case dom::element_type::BOOL:
      return bool(element);
    case dom::element_type::NULL_VALUE:
      return nullptr;
    default:
      return double(element);
  }
}

/// The parser that keeps its memory between texts is for texts of this size.
constexpr std::size_t frequentSize = 1 << 16;

/// None for what the fast parser refuses: a fault, or a number beyond its types.
std::optional<Value> decodeFast(dom::parser& parser, std::string_view text) {
  dom::element root;
  const bool fits =
      parser.capacity() >= text.size() || !parser.allocate(std::max(text.size(), frequentSize), maxDepth);
  if (!fits || parser.parse(text.data(), text.size()).get(root)) return {};
  return valueOf(root);
}

}  // namespace

Value decode(std::string_view text) {
  thread_local dom::parser kept;
  std::optional<dom::parser> large;
  dom::parser& parser = text.size() > frequentSize ? large.emplace() : kept;
  if (auto value = decodeFast(parser, text)) return std::move(*value);
  Builder builder;
  json::sax_parse(text.begin(), text.end(), &builder);
  return builder.take();
}

}  // namespace vell::mcp
