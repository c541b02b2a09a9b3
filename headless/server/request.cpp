#include "headless/server/request.h"

#include "json/error.h"
#include "json/rewrite.h"
#include "json/writer.h"

namespace vell::headless {
namespace {

json::Document parse(json::Text line) {
  try {
    return json::Document(std::move(line));
  } catch (const json::ParseError& error) {
    throw RpcError(RpcCode::parseError, error.what());
  }
}

std::string echoed(const std::optional<json::Node>& id) {
  const bool usable = id && (id->kind() == json::Kind::string || id->kind() == json::Kind::number);
  return usable ? json::toString(*id, json::Layout::compact) : "null";
}

[[noreturn]] void refuse(const std::string& reason) { throw RpcError(RpcCode::invalidRequest, reason); }

}  // namespace

Request::Request(json::Text line) : document_(parse(std::move(line))) {
  const json::Node root = document_.root();
  if (root.kind() == json::Kind::array) refuse("Batches are not served: send one request a line.");
  if (root.kind() != json::Kind::object) refuse("A request is an object, got " + describe(root) + ".");
  id_ = echoed(root.find("id"));
}

std::string Request::method() const {
  const json::Node root = document_.root();
  const auto protocol = root.find("jsonrpc");
  if (protocol && protocol->string() != "2.0")
    refuse("jsonrpc: expected \"2.0\", got " + describe(*protocol));
  const auto method = root.find("method");
  if (!method) refuse("method: expected a string, got nothing");
  auto name = method->string();
  if (!name) refuse("method: expected a string, got " + describe(*method));
  return std::move(*name);
}

Params Request::params() const { return Params(document_.root().find("params")); }

std::string resultLine(std::string_view id, std::string_view result) {
  std::string line;
  line.reserve(result.size() + id.size() + 40);
  json::Writer(line)
      .beginObject()
      .key("id")
      .raw(id)
      .member("jsonrpc", "2.0")
      .key("result")
      .raw(result)
      .endObject();
  return line += '\n';
}

std::string errorLine(std::string_view id, RpcCode code, std::string_view message) {
  std::string line;
  json::Writer(line)
      .beginObject()
      .key("error")
      .beginObject()
      .member("code", static_cast<int>(code))
      .member("message", message)
      .endObject()
      .key("id")
      .raw(id)
      .member("jsonrpc", "2.0")
      .endObject();
  return line += '\n';
}

}  // namespace vell::headless
