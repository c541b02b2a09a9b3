#include "formats/inline_units.h"

#include <algorithm>

#include "formats/attribute_list.h"

namespace vell::formats {
namespace {

constexpr int maxTargetParentheses = 32;

bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool isLetterOrDigit(char c) { return isLetter(c) || (c >= '0' && c <= '9'); }

/// Reads a source from the front.
class Scanner {
 public:
  Scanner(std::string_view source, std::size_t at) : source_(source), at_(at) {}

  std::size_t at() const { return at_; }
  char peek() const { return at_ < source_.size() ? source_[at_] : '\0'; }
  bool take(char c) {
    if (peek() != c || at_ == source_.size()) return false;
    ++at_;
    return true;
  }
  /// True if there were any.
  bool skipBlanks() {
    const std::size_t start = at_;
    while (at_ < source_.size() && isBlank(source_[at_])) ++at_;
    return at_ > start;
  }
  template <class Fits>
  std::string_view takeWhile(Fits&& fits) {
    const std::size_t start = at_;
    while (at_ < source_.size() && fits(source_[at_])) ++at_;
    return source_.substr(start, at_ - start);
  }
  /// One character, escaped or referred to or as it stands, is appended.
  void takeCharacter(std::string& out) {
    const std::size_t length = decodeReference(source_.substr(at_), out);
    if (length > 0) return void(at_ += length);
    if (peek() == '\\' && at_ + 1 < source_.size() && isPunctuation(source_[at_ + 1])) ++at_;
    out += source_[at_++];
  }
  bool atEnd() const { return at_ >= source_.size(); }

 private:
  std::string_view source_;
  std::size_t at_;
};

/// A target without blanks whose parentheses pair up.
bool takeBareTarget(Scanner& scanner, std::string& target) {
  int open = 0;
  while (!scanner.atEnd() && !isBlank(scanner.peek()) && !isControl(scanner.peek())) {
    const char c = scanner.peek();
    if (c == ')' && open == 0) break;
    if (c == '(' && ++open > maxTargetParentheses) return false;
    if (c == ')') --open;
    scanner.takeCharacter(target);
  }
  return open == 0;
}

bool takeTarget(Scanner& scanner, std::string& target) {
  if (!scanner.take('<')) return takeBareTarget(scanner, target);
  while (!scanner.atEnd() && scanner.peek() != '>') {
    if (scanner.peek() == '<' || scanner.peek() == '\n') return false;
    scanner.takeCharacter(target);
  }
  return scanner.take('>');
}

bool takeTitle(Scanner& scanner, std::string& title) {
  const char quote = scanner.peek();
  if (quote != '"' && quote != '\'' && quote != '(') return false;
  scanner.take(quote);
  const char end = quote == '(' ? ')' : quote;
  while (!scanner.atEnd() && scanner.peek() != end) {
    if (quote == '(' && scanner.peek() == '(') return false;
    scanner.takeCharacter(title);
  }
  return scanner.take(end);
}

bool takeLink(Scanner& scanner, Attributes& style) {
  if (!scanner.take('(')) return false;
  scanner.skipBlanks();
  std::string target;
  if (!takeTarget(scanner, target)) return false;
  style.set("a", target);
  if (scanner.skipBlanks() && scanner.peek() != ')') {
    std::string title;
    if (!takeTitle(scanner, title)) return false;
    style.set("title", title);
    scanner.skipBlanks();
  }
  return scanner.take(')');
}

/// Bytes of the list; 0 where it is none, or one that gives an id.
std::size_t takeList(std::string_view source, Attributes& style) {
  AttributeListReader list(source);
  Attributes read;
  bool hasId = false;
  const bool isList = list.read([&](const ListItem& item) {
    hasId = hasId || (item.key == "#" && !item.quotedKey);
    read.set(item.key, item.value);
  });
  if (!isList || hasId) return 0;
  for (const Attribute& entry : read) style.set(entry.key, entry.value);
  return list.length();
}

bool isScheme(std::string_view text) {
  const auto fits = [](char c) { return isLetterOrDigit(c) || c == '+' || c == '.' || c == '-'; };
  return text.size() >= 2 && text.size() <= 32 && isLetter(text.front()) &&
         std::all_of(text.begin(), text.end(), fits);
}

bool isMailHost(std::string_view host) {
  while (true) {
    const std::size_t dot = std::min(host.find('.'), host.size());
    const std::string_view label = host.substr(0, dot);
    const auto fits = [](char c) { return isLetterOrDigit(c) || c == '-'; };
    if (label.empty() || label.size() > 63 || label.front() == '-' || label.back() == '-') return false;
    if (!std::all_of(label.begin(), label.end(), fits)) return false;
    if (dot == host.size()) return true;
    host.remove_prefix(dot + 1);
  }
}

bool isMailAddress(std::string_view text) {
  constexpr std::string_view others = ".!#$%&'*+/=?^_`{|}~-";
  const std::size_t at = text.find('@');
  if (at == 0 || at == std::string_view::npos) return false;
  const auto fits = [&](char c) { return isLetterOrDigit(c) || others.find(c) != std::string_view::npos; };
  return std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), fits) &&
         isMailHost(text.substr(at + 1));
}

/// `name`, `name=value`, `name="value"`.
bool takeTagAttribute(Scanner& scanner) {
  const auto begins = [](char c) { return isLetter(c) || c == '_' || c == ':'; };
  const auto goesOn = [&](char c) { return begins(c) || isLetterOrDigit(c) || c == '.' || c == '-'; };
  const auto isBare = [](char c) {
    return !isBlank(c) && std::string_view("\"'=<>`\\").find(c) == std::string_view::npos;
  };
  if (!begins(scanner.peek())) return false;
  scanner.takeWhile(goesOn);
  Scanner behind = scanner;
  behind.skipBlanks();
  if (!behind.take('=')) return true;
  scanner = behind;
  scanner.skipBlanks();
  const char quote = scanner.peek();
  if (quote != '"' && quote != '\'') return !scanner.takeWhile(isBare).empty();
  scanner.take(quote);
  scanner.takeWhile([&](char c) { return c != quote && c != '\\'; });
  return scanner.take(quote);
}

std::size_t endOfTag(std::string_view source, std::size_t at) {
  Scanner scanner(source, at + 1);
  const bool closes = scanner.take('/');
  if (!isLetter(scanner.peek())) return std::string_view::npos;
  scanner.takeWhile([](char c) { return isLetterOrDigit(c) || c == '-'; });
  while (scanner.skipBlanks() && !closes && scanner.peek() != '>' && scanner.peek() != '/') {
    if (!takeTagAttribute(scanner)) return std::string_view::npos;
  }
  if (!closes) scanner.take('/');
  return scanner.take('>') ? scanner.at() : std::string_view::npos;
}

}  // namespace

std::optional<BracketTail> readBracketTail(std::string_view source, std::size_t at) {
  BracketTail tail;
  tail.end = at;
  Scanner scanner(source, at);
  if (takeLink(scanner, tail.style)) {
    tail.isLink = true;
    tail.end = scanner.at();
  } else {
    tail.style = {};
  }
  if (tail.end < source.size() && source[tail.end] == '{')
    tail.end += takeList(source.substr(tail.end), tail.style);
  if (tail.end == at) return std::nullopt;
  return tail;
}

std::optional<std::string> autolinkTarget(std::string_view source) {
  if (!source.starts_with('<')) return std::nullopt;
  const auto fits = [](char c) { return !isControl(c) && c != ' ' && c != '<' && c != '>' && c != '\\'; };
  Scanner scanner(source, 1);
  const std::string_view address = scanner.takeWhile(fits);
  if (!scanner.take('>')) return std::nullopt;
  const std::size_t colon = address.find(':');
  if (colon != std::string_view::npos && isScheme(address.substr(0, colon))) return std::string(address);
  if (isMailAddress(address)) return "mailto:" + std::string(address);
  return std::nullopt;
}

std::size_t HtmlFinder::Next::behind(std::string_view source, std::size_t at) {
  if (searchedFrom > at || found < at) {
    searchedFrom = at;
    found = source.find(wanted, at);
  }
  return found;
}

std::size_t HtmlFinder::endOf(std::size_t at) {
  for (Enclosure& enclosure : enclosures_) {
    if (!source_.substr(at).starts_with(enclosure.begin)) continue;
    const std::size_t inside = at + enclosure.begin.size();
    const std::size_t end = enclosure.end.behind(source_, inside);
    const bool isHtml = end < backslash_.behind(source_, inside);
    return isHtml ? end + enclosure.end.wanted.size() : std::string_view::npos;
  }
  return endOfTag(source_, at);
}

}  // namespace vell::formats
