#include "ipc/outline_summary.h"

namespace vell::ipc {

namespace {

[[noreturn]] void fail(const std::string& place, const std::string& expected) {
  throw ShapeError("Vell sent an unexpected outline summary: " + place + " is not " + expected);
}

std::optional<std::string> member(const json::Node& object, const std::string& key) {
  const auto value = object.find(key);
  return value ? value->string() : std::nullopt;
}

OutlineSummary decode(const json::Node& node, const std::string& place) {
  if (node.kind() != json::Kind::object) fail(place, "an object");
  auto persistentId = member(node, "persistentId");
  auto displayName = member(node, "displayName");
  if (!persistentId) fail(place + ".persistentId", "a string");
  if (!displayName) fail(place + ".displayName", "a string");
  return {std::move(*persistentId), std::move(*displayName), member(node, "fileURL")};
}

}  // namespace

OutlineSummary decodeOutlineSummary(const json::Node& summary) { return decode(summary, "outline"); }

std::vector<OutlineSummary> decodeOutlineSummaries(const json::Node& summaries) {
  if (summaries.kind() != json::Kind::array) fail("the list", "an array");
  std::vector<OutlineSummary> decoded;
  for (const json::Node& node : summaries.elements()) {
    decoded.push_back(decode(node, "outlines[" + std::to_string(decoded.size()) + "]"));
  }
  return decoded;
}

}  // namespace vell::ipc
