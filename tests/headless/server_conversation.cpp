#include "tests/headless/server_conversation.h"

#include <charconv>

#include "json/rewrite.h"
#include "json/writer.h"

namespace vell::headless {
namespace {

std::string compact(const json::Node& value) { return json::toString(value, json::Layout::compact); }

std::optional<json::Node> step(const json::Node& from, std::string_view name) {
  if (from.kind() != json::Kind::array) return from.find(name);
  std::size_t index = 0;
  std::from_chars(name.data(), name.data() + name.size(), index);
  const auto elements = from.elements();
  return index < elements.size() ? std::optional(elements[index]) : std::nullopt;
}

std::string textsOf(const json::Node& rows) {
  std::string all;
  for (const json::Node& row : rows.elements()) {
    for (const json::Node& run : row.find("text")->elements()) all += *run.find("string")->string();
    if (const auto children = row.find("children")) all += "(" + textsOf(*children) + ")";
    all += ' ';
  }
  if (!all.empty()) all.pop_back();
  return all;
}

}  // namespace

std::string at(const std::string& text, std::string_view place) {
  const json::Document document{text};
  std::optional<json::Node> node = document.root();
  while (node && !place.empty()) {
    const std::string_view name = place.substr(0, place.find('.'));
    node = step(*node, name);
    place.remove_prefix(std::min(name.size() + 1, place.size()));
  }
  return node ? compact(*node) : "";
}

std::vector<std::string> elements(const std::string& array) {
  const json::Document document{array};
  std::vector<std::string> texts;
  for (const json::Node& element : document.root().elements()) texts.push_back(compact(element));
  return texts;
}

std::string Conversation::call(const std::string& method, const std::string& params) {
  std::string request;
  json::Writer(request)
      .beginObject()
      .member("id", 1)
      .member("method", method)
      .key("params")
      .raw(params)
      .endObject();
  const json::Document answer{client_.ask(request)};
  if (const auto result = answer.root().find("result")) return compact(*result);
  return *answer.root().find("error")->find("message")->string();
}

std::string Conversation::texts(const std::string& rows) {
  return textsOf(json::Document(std::string_view(rows)).root());
}

}  // namespace vell::headless
