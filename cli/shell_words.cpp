#include "cli/shell_words.h"

namespace vell::cli {
namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n'; }

/// Whether a backslash in front of the character takes its meaning away, rather than standing for itself.
bool isEscapable(char c, char openQuote, Shell shell) {
  if (openQuote == '"') return c == '"' || c == '\\' || c == '$' || c == '`';
  if (openQuote == '\'') return shell == Shell::fish && (c == '\'' || c == '\\');
  return true;
}

/// Whether bash reads the character as itself where nothing is quoted.
bool isPlain(char c) {
  constexpr std::string_view signs = "_@%+=:,./-";
  const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  return letter || (c >= '0' && c <= '9') || static_cast<unsigned char>(c) >= 0x80 ||
         signs.find(c) != std::string_view::npos;
}

}  // namespace

TypedLine splitLine(std::string_view line, Shell shell) {
  TypedLine typed;
  bool inWord = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    char c = line[i];
    if (typed.openQuote == 0 && isBlank(c)) {
      inWord = false;
      continue;
    }
    if (!inWord) typed.words.emplace_back();
    inWord = true;
    if (c == typed.openQuote) {
      typed.openQuote = 0;
      continue;
    }
    if (typed.openQuote == 0 && (c == '\'' || c == '"')) {
      typed.openQuote = c;
      continue;
    }
    if (c == '\\' && i + 1 < line.size() && isEscapable(line[i + 1], typed.openQuote, shell)) c = line[++i];
    typed.words.back() += c;
  }
  if (!inWord) typed.words.emplace_back();
  return typed;
}

std::optional<std::string> quotedForBash(std::string_view text, char openQuote) {
  std::string quoted;
  for (const char c : text) {
    if (openQuote == '"' && c == '!') return std::nullopt;
    if (openQuote == '\'' && c == '\'') {
      quoted += "'\\''";
      continue;
    }
    const bool escaped = openQuote == 0 ? !isPlain(c) : isEscapable(c, openQuote, Shell::bash);
    if (escaped) quoted += '\\';
    quoted += c;
  }
  return quoted;
}

}  // namespace vell::cli
