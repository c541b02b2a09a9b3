#include "headless/server/params.h"

#include "json/rewrite.h"
#include "text/utf8.h"

namespace vell::headless {
namespace {

constexpr std::size_t quotedLimit = 60;

std::string quoted(const json::Node& value) {
  std::string text = json::toString(value, json::Layout::compact);
  if (text.size() <= quotedLimit) return text;
  std::size_t end = quotedLimit;
  while (end > 0 && text::isContinuation(text[end])) --end;
  return text.substr(0, end) + "…";
}

std::string stringAt(const json::Node& value, std::string_view place) {
  if (auto text = value.string()) return std::move(*text);
  const bool number = value.kind() == json::Kind::number;
  Params::fail(place, "a string", describe(value) + (number ? " (write \"" + quoted(value) + "\")" : ""));
}

/// Keeps its own stack, so that depth costs no call frames.
bool mentionsPath(const json::Node& params) {
  std::vector<json::Node> open{params};
  while (!open.empty()) {
    const json::Node value = open.back();
    open.pop_back();
    const auto text = value.string();
    if (text && (text->starts_with('/') || text->starts_with('('))) return true;
    if (value.kind() == json::Kind::array)
      for (const json::Node& element : value.elements()) open.push_back(element);
    if (value.kind() == json::Kind::object)
      for (const auto& [key, member, at] : value.members()) open.push_back(member);
  }
  return false;
}

}  // namespace

std::string describe(const json::Node& value) {
  switch (value.kind()) {
    case json::Kind::object:
      return "an object";
    case json::Kind::array:
      return "an array";
    case json::Kind::string:
      return "the string " + quoted(value);
    case json::Kind::number:
      return "the number " + quoted(value);
    case json::Kind::boolean:
      return quoted(value);
    case json::Kind::null:
      return "null";
  }
  return "something else";
}

Params::Params(std::optional<json::Node> params) {
  if (!params || params->kind() == json::Kind::null) return;
  if (params->kind() != json::Kind::object) fail("params", "an object of named members", describe(*params));
  params_ = params;
}

bool Params::mentionPath() const { return params_ && mentionsPath(*params_); }

std::optional<json::Node> Params::member(std::string_view key) const {
  if (!params_) return std::nullopt;
  const auto found = params_->find(key);
  return found && found->kind() != json::Kind::null ? found : std::nullopt;
}

std::optional<std::string> Params::string(std::string_view key) const {
  const auto value = member(key);
  return value ? std::optional(stringAt(*value, key)) : std::nullopt;
}

std::string Params::requiredString(std::string_view key) const {
  auto text = string(key);
  if (!text) fail(key, "a string", "nothing");
  return std::move(*text);
}

std::optional<std::string> Params::nonEmpty(std::string_view key, const char* expected) const {
  auto text = string(key);
  if (text && text->empty()) fail(key, expected, "\"\"");
  return text;
}

bool Params::flag(std::string_view key, bool fallback) const {
  const auto value = member(key);
  if (!value) return fallback;
  if (const auto flag = value->boolean()) return *flag;
  fail(key, "true or false", describe(*value));
}

std::vector<std::string> Params::strings(std::string_view key) const {
  const auto value = member(key);
  if (!value) return {};
  if (value->kind() != json::Kind::array) fail(key, "an array of strings", describe(*value));
  std::vector<std::string> texts;
  for (const json::Node& element : value->elements())
    texts.push_back(stringAt(element, std::string(key) + "[" + std::to_string(texts.size()) + "]"));
  return texts;
}

std::vector<std::string> Params::requiredStrings(std::string_view key) const {
  auto texts = strings(key);
  if (texts.empty()) fail(key, "an array of at least one string", member(key) ? "an empty one" : "nothing");
  return texts;
}

std::optional<std::string> Params::stringOrInteger(std::string_view key) const {
  const auto value = member(key);
  if (!value) return std::nullopt;
  if (const auto integer = value->integer()) return std::to_string(*integer);
  if (auto text = value->string()) return text;
  fail(key, "a string or an integer", describe(*value));
}

void Params::fail(std::string_view key, const std::string& expected, const std::string& got) {
  throw RpcError(RpcCode::invalidParams, std::string(key) + ": expected " + expected + ", got " + got);
}

}  // namespace vell::headless
