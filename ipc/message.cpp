#include "ipc/message.h"

#include <optional>

#include "ipc/client_error.h"

namespace vell::ipc {

std::string requestLine(std::int64_t id, std::string_view method, std::string_view params) {
  std::string line = R"({"id":)" + std::to_string(id) + R"(,"jsonrpc":"2.0","method":")";
  line.append(method).append("\"");
  if (!params.empty()) line.append(R"(,"params":)").append(params);
  return line.append("}\n");
}

std::unique_ptr<json::Document> parseMessage(json::Text line) {
  if (line.view().find_first_not_of(" \t\r") == std::string_view::npos) return nullptr;
  return std::make_unique<json::Document>(std::move(line));
}

void throwIfError(const json::Document& message) {
  const auto error = message.root().find("error");
  if (!error || error->kind() != json::Kind::object) return;
  const auto code = error->find("code");
  const auto text = error->find("message");
  throw ClientError::rpcError(code ? code->integer().value_or(-1) : -1,
                              text ? text->string().value_or("Unknown error") : "Unknown error");
}

}  // namespace vell::ipc
