#include "ipc/methods/params.h"

#include <nlohmann/json.hpp>

namespace vell::ipc {

namespace {

using nlohmann::json;

/// The text as a JSON string. `place` tells which argument it is.
std::string quoted(const std::string& text, const std::string& place) {
  try {
    return json(text).dump();
  } catch (const json::type_error&) {
    const std::string name = json(place).dump(-1, ' ', false, json::error_handler_t::replace);
    throw ParamsError("The argument " + name + " is not valid UTF-8.");
  }
}

void separate(std::string& text) {
  if (text.size() > 1) text += ',';
}

}  // namespace

ParamsWriter& ParamsWriter::add(const std::string& key, const std::string& value) {
  return addJson(key, quoted(value, key));
}

ParamsWriter& ParamsWriter::add(const std::string& key, bool value) {
  return addJson(key, value ? "true" : "false");
}

ParamsWriter& ParamsWriter::add(const std::string& key, const std::vector<std::string>& values) {
  std::string array = "[";
  for (std::size_t i = 0; i < values.size(); ++i) {
    separate(array);
    array += quoted(values[i], key + "[" + std::to_string(i) + "]");
  }
  return addJson(key, array + "]");
}

ParamsWriter& ParamsWriter::add(const std::string& key, const Attributes& attributes) {
  std::string object = "{";
  for (const auto& [name, value] : attributes) {
    separate(object);
    const std::string place = key + "." + name;
    object += quoted(name, place) + ":" + (value ? quoted(*value, place) : "null");
  }
  return addJson(key, object + "}");
}

ParamsWriter& ParamsWriter::addJson(const std::string& key, std::string json) {
  members_[key] = std::move(json);
  return *this;
}

std::string ParamsWriter::json() const {
  std::string object = "{";
  for (const auto& [key, value] : members_) {
    separate(object);
    object.append("\"").append(key).append("\":").append(value);
  }
  return object + "}";
}

}  // namespace vell::ipc
