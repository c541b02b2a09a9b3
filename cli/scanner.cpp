#include "cli/scanner.h"

#include <algorithm>

#include "cli/row_refs.h"

namespace vell::cli {
namespace {

const Option* findOption(const Command& command, std::string_view name) {
  for (const Option* option : command.options) {
    if (!option->positional() && (option->name == name || option->shortName == name)) return option;
  }
  for (const Option* option : {&helpOption, &versionOption}) {
    if (option->name == name || option->shortName == name) return option;
  }
  return nullptr;
}

/// Splits `--name=value`, `-nvalue` and `-n=value`.
void splitAttached(Token& token) {
  const bool isLong = token.name.starts_with("--");
  const std::size_t end = isLong ? token.name.find('=') : 2;
  if (end >= token.name.size()) return;
  std::string_view value = token.name.substr(end);
  if (value.front() == '=') value.remove_prefix(1);
  token.attached = value;
  token.name = token.name.substr(0, end);
}

std::size_t followingValues(const Token& token, std::span<const std::string> rest) {
  if (token.option == nullptr || token.option->takes == Takes::nothing || token.attached) return 0;
  if (token.option->takes != Takes::list) return std::min<std::size_t>(rest.size(), 1);
  return static_cast<std::size_t>(std::find_if(rest.begin(), rest.end(), isOptionToken) - rest.begin());
}

}  // namespace

Token scan(const Command& command, std::span<const std::string> arguments) {
  Token token;
  token.name = arguments.front();
  if (!isOptionToken(arguments.front())) return token;
  token.kind = arguments.front() == "--" ? Token::Kind::terminator : Token::Kind::option;
  if (token.kind == Token::Kind::terminator) return token;
  splitAttached(token);
  token.option = findOption(command, token.name);
  token.values = arguments.subspan(1, followingValues(token, arguments.subspan(1)));
  return token;
}

}  // namespace vell::cli
