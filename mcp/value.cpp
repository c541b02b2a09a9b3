#include "mcp/value.h"

#include <algorithm>
#include <cmath>

#include "json/writer.h"

namespace vell::mcp {

namespace {

std::size_t mix(std::size_t seed, std::size_t hash) { return (seed * 1099511628211U) ^ hash; }

template <class Content>
std::size_t hashOf(const Content& content) {
  return std::hash<Content>{}(content);
}

std::size_t hashOf(const Data& data) {
  return mix(hashOf(data.bytes), data.mimeType ? hashOf(*data.mimeType) : 1);
}

std::size_t hashOf(const Value::Array& array) {
  std::size_t hash = array.size();
  for (const Value& element : array) hash = mix(hash, element.hash());
  return hash;
}

std::size_t hashOf(const Value::Object& object) {
  std::size_t hash = object.size();
  for (const auto& [key, member] : object) hash = mix(mix(hash, hashOf(key)), member.hash());
  return hash;
}

Value valueOf(const json::Node& node, int depth);

void checkDepth(const json::Node& container, int depth) {
  if (depth < maxDepth) return;
  throw json::ParseError("nested deeper than " + std::to_string(maxDepth) + " levels", container.offset());
}

Value::Object objectOf(const json::Node& node, int depth) {
  checkDepth(node, depth);
  Value::Object object;
  for (const auto& [key, member, at] : node.members())
    object.insert_or_assign(key, valueOf(member, depth + 1));
  return object;
}

Value::Array arrayOf(const json::Node& node, int depth) {
  checkDepth(node, depth);
  Value::Array array;
  for (const json::Node& element : node.elements()) array.push_back(valueOf(element, depth + 1));
  return array;
}

Value numberOf(const json::Node& node) {
  if (const auto integer = node.integer()) return *integer;
  if (const auto number = node.number()) return *number;
  throw json::ParseError("a number beyond the range of doubles", node.offset());
}

Value valueOf(const json::Node& node, int depth) {
  switch (node.kind()) {
    case json::Kind::object:
      return objectOf(node, depth);
    case json::Kind::array:
      return arrayOf(node, depth);
    case json::Kind::string:
      return *node.string();
    case json::Kind::number:
      return numberOf(node);
    case json::Kind::boolean:
      return *node.boolean();
    case json::Kind::null:
      break;
  }
  return nullptr;
}

struct Encoder {
  json::Writer& writer;

  template <class Scalar>
  void operator()(const Scalar& value) {
    writer.value(value);
  }

  void operator()(const Data& value) {
    writer.value("data:" + value.mimeType.value_or("text/plain") + ";base64," + base64(value.bytes));
  }

  void operator()(const Value::Array& value) {
    writer.beginArray();
    for (const Value& element : value) element.visit(*this);
    writer.endArray();
  }

  void operator()(const Value::Object& value) {
    writer.beginObject();
    for (const auto& [key, member] : value) {
      writer.key(key);
      member.visit(*this);
    }
    writer.endObject();
  }
};

}  // namespace

std::optional<std::int64_t> Value::asInteger() const {
  constexpr double firstInexact = 9007199254740992.0;  // 2^53
  if (const auto* whole = integer()) return *whole;
  const double* real = number();
  if (!real || std::trunc(*real) != *real || std::fabs(*real) >= firstInexact) return std::nullopt;
  return static_cast<std::int64_t>(*real);
}

const Value* Value::find(std::string_view key) const {
  const Object* members = object();
  if (!members) return nullptr;
  const auto member = members->find(key);
  return member == members->end() ? nullptr : &member->second;
}

std::string Value::description() const { return encode(*this); }

std::size_t Value::hash() const {
  return mix(content_.index(), std::visit([](const auto& content) { return hashOf(content); }, content_));
}

Value decode(const json::Node& node) { return valueOf(node, 0); }

Value decode(std::string_view text) { return decode(json::Document(text).root()); }

std::string encode(const Value& value) {
  std::string text;
  json::Writer writer(text);
  value.visit(Encoder{writer});
  return text;
}

std::string base64(std::string_view bytes) {
  static constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - at);
    unsigned group = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      group = group << 8 | (i < count ? static_cast<unsigned char>(bytes[at + i]) : 0U);
    }
    for (std::size_t digit = 0; digit < 4; ++digit) {
      text += digit <= count ? alphabet[group >> (18 - 6 * digit) & 63] : '=';
    }
  }
  return text;
}

}  // namespace vell::mcp
