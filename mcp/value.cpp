#include "mcp/value.h"

#include "mcp/value_text.h"

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

}  // namespace

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

}  // namespace vell::mcp
