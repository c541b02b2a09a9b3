#include "ipc/answer.h"

#include "ipc/message.h"
#include "json/error.h"
#include "json/rewrite.h"

namespace vell::ipc {

std::optional<Answer> Answer::parse(json::Text line) {
  auto message = parseMessage(std::move(line));
  if (!message || message->root().kind() == json::Kind::array) return std::nullopt;
  if (message->root().kind() != json::Kind::object) {
    throw json::ParseError("Vell sent a line that is not a JSON object", 0);
  }
  throwIfError(*message);
  if (!message->root().find("id")) return std::nullopt;
  if (const auto result = message->root().find("result")) return Answer(std::move(message), *result);
  auto null = std::make_unique<json::Document>(json::Text("null"));
  const json::Node root = null->root();
  return Answer(std::move(null), root);
}

std::string Answer::bytes() const { return json::toString(result_, json::Layout::compact); }

// An escape for each quote makes it longer by about a seventh.
void Answer::appendQuoted(std::string& out) const {
  const std::size_t size = document_->text().size();
  out.reserve(out.size() + size + size / 5);
  json::appendQuoted(result_, out);
}

}  // namespace vell::ipc
