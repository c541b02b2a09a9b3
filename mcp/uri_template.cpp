#include "mcp/uri_template.h"

#include <stdexcept>

#include "text/percent_encoding.h"

namespace vell::mcp {

namespace {

std::string takeLiteral(std::string_view& rest) {
  const std::size_t brace = rest.find('{');
  std::string literal(rest.substr(0, brace));
  if (literal.find('}') != std::string::npos)
    throw std::invalid_argument("a closing brace without an opening one");
  rest.remove_prefix(literal.size());
  return literal;
}

std::string takeVariable(std::string_view& rest) {
  const std::size_t end = rest.find('}');
  const std::string name(rest.substr(1, end == std::string_view::npos ? end : end - 1));
  if (end == std::string_view::npos || name.empty() || name.find('{') != std::string::npos) {
    throw std::invalid_argument("a brace that is not part of {name}");
  }
  rest.remove_prefix(end + 1);
  return name;
}

/// The end of the value at the front of `rest`: before the literal behind it, or at the end of the URI.
std::size_t endOfValue(std::string_view rest, const std::string& literalBehind, bool last) {
  if (!literalBehind.empty() && !last) return rest.find(literalBehind);
  if (rest.size() < literalBehind.size()) return std::string_view::npos;
  const std::size_t end = rest.size() - literalBehind.size();
  return rest.substr(end) == literalBehind ? end : std::string_view::npos;
}

}  // namespace

UriTemplate::UriTemplate(std::string text) : text_(std::move(text)) {
  std::string_view rest = text_;
  literalBefore_ = takeLiteral(rest);
  while (!rest.empty()) {
    std::string variable = takeVariable(rest);
    pieces_.push_back({std::move(variable), takeLiteral(rest)});
  }
}

std::optional<UriTemplate::Variables> UriTemplate::match(std::string_view uri) const {
  if (uri.substr(0, literalBefore_.size()) != literalBefore_) return std::nullopt;
  if (pieces_.empty()) return uri == literalBefore_ ? std::optional(Variables{}) : std::nullopt;
  uri.remove_prefix(literalBefore_.size());
  Variables variables;
  for (const Piece& piece : pieces_) {
    const std::size_t end = endOfValue(uri, piece.literalBehind, &piece == &pieces_.back());
    if (end == std::string_view::npos || uri.substr(0, end).find('/') != std::string_view::npos)
      return std::nullopt;
    const auto value = text::percentDecoded(uri.substr(0, end));
    if (!value) return std::nullopt;
    if (!value->empty()) variables[piece.variable] = *value;
    uri.remove_prefix(end + piece.literalBehind.size());
  }
  return variables;
}

}  // namespace vell::mcp
