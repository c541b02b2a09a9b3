#include <algorithm>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "formats/attribute_list.h"
#include "formats/inline_markdown.h"

namespace vell::formats {
namespace {

/// A stretch of literal text, or a mark that opens or closes a style.
struct Piece {
  enum class Kind { text, open, close };

  Kind kind = Kind::text;
  std::string_view text;
  Attributes attrs;  ///< of an open mark
};

/// A mark that may turn out to open a style; until then its piece is text.
struct Opener {
  std::string_view mark;
  std::size_t piece;
};

/// Marks that wait for their end at a time; what is beyond is text. Bounds the work for each character.
constexpr std::size_t maxOpeners = 64;
constexpr int maxUrlParentheses = 32;

class InlineParser {
 public:
  explicit InlineParser(std::string_view source) : source_(source) {}

  Text parse() {
    while (at_ < source_.size()) step();
    flush();
    return assemble();
  }

 private:
  void step();
  void takeEscape();
  void takeReference();
  void takeCode();
  void takeDelimiters();
  void takeOne(std::string_view mark, bool canOpen, bool canClose);
  void takeOpenBracket();
  void takeCloseBracket();
  std::optional<Attributes> bracketTail(std::size_t& at) const;
  bool takeTarget(std::size_t& at, Attributes& attrs) const;
  bool takeBareTarget(std::size_t& at, Attributes& attrs) const;
  bool takeAttributes(std::size_t& at, Attributes& attrs) const;
  std::size_t findCodeEnd(std::size_t from, std::size_t length);
  bool isOpen(char mark) const;
  bool close(std::string_view mark, Attributes attrs);
  void flush();
  void addText(std::string_view text) { pieces_.push_back({Piece::Kind::text, text, {}}); }
  std::string_view keep(std::string text);
  Text assemble() const;

  std::string_view source_;
  std::size_t at_ = 0;
  std::size_t literalFrom_ = 0;
  std::vector<Piece> pieces_;
  std::vector<Opener> openers_;
  std::vector<std::unique_ptr<std::string>> kept_;
  std::optional<std::unordered_map<std::size_t, std::size_t>> lastBackticks_;
};

/// Ends the literal text before the current character.
void InlineParser::flush() {
  if (at_ > literalFrom_) addText(source_.substr(literalFrom_, at_ - literalFrom_));
  literalFrom_ = at_;
}

std::string_view InlineParser::keep(std::string text) {
  kept_.push_back(std::make_unique<std::string>(std::move(text)));
  return *kept_.back();
}

void InlineParser::step() {
  switch (source_[at_]) {
    case '\\':
      return takeEscape();
    case '&':
      return takeReference();
    case '`':
      return takeCode();
    case '*':
    case '_':
    case '~':
    case '=':
      return takeDelimiters();
    case '[':
      return takeOpenBracket();
    case ']':
      return takeCloseBracket();
    default:
      ++at_;
  }
}

void InlineParser::takeEscape() {
  if (at_ + 1 >= source_.size() || !isPunctuation(source_[at_ + 1])) {
    ++at_;
    return;
  }
  flush();
  literalFrom_ = at_ + 1;
  at_ += 2;
}

void InlineParser::takeReference() {
  std::string character;
  const std::size_t length = decodeReference(source_.substr(at_), character);
  if (length == 0) {
    ++at_;
    return;
  }
  flush();
  addText(keep(std::move(character)));
  at_ += length;
  literalFrom_ = at_;
}

/// The start of the run of exactly `length` backticks at or behind `from`; npos where there is none.
std::size_t InlineParser::findCodeEnd(std::size_t from, std::size_t length) {
  if (!lastBackticks_) {
    lastBackticks_.emplace();
    for (std::size_t at = source_.find('`'); at != std::string_view::npos; at = source_.find('`', at)) {
      const std::size_t run = runLength(source_, at);
      (*lastBackticks_)[run] = at;
      at += run;
    }
  }
  const auto last = lastBackticks_->find(length);
  if (last == lastBackticks_->end() || last->second < from) return std::string_view::npos;
  std::size_t at = source_.find('`', from);
  while (runLength(source_, at) != length) at = source_.find('`', at + runLength(source_, at));
  return at;
}

void InlineParser::takeCode() {
  const std::size_t length = runLength(source_, at_);
  const std::size_t start = at_ + length;
  const std::size_t end = findCodeEnd(start, length);
  if (end == std::string_view::npos) {
    at_ = start;
    return;
  }
  flush();
  std::string_view code = source_.substr(start, end - start);
  const bool padded = code.size() > 1 && code.front() == ' ' && code.back() == ' ';
  if (padded && code.find_first_not_of(' ') != std::string_view::npos) code = code.substr(1, code.size() - 2);
  pieces_.push_back({Piece::Kind::open, {}, {{"code", ""}}});
  addText(code);
  pieces_.push_back({Piece::Kind::close, {}, {}});
  at_ = literalFrom_ = end + length;
}

void InlineParser::takeDelimiters() {
  const char c = source_[at_];
  const std::size_t length = runLength(source_, at_);
  Flanks flanks = flanksOf(source_, at_, length);
  flanks.canOpen = flanks.canOpen && openers_.size() < maxOpeners;
  flanks.canClose = flanks.canClose && isOpen(c);
  const std::string_view run = source_.substr(at_, length);
  const bool twin = c == '~' || c == '=';
  const bool isMark = twin ? length == 2 : length <= 3;
  if (!isMark || (!flanks.canOpen && !flanks.canClose)) {
    at_ += length;
    return;
  }
  flush();
  at_ += length;
  literalFrom_ = at_;
  if (length != 3) return takeOne(run, flanks.canOpen, flanks.canClose);
  // Three stars or underscores are two marks, the inner one shorter on the left and first on the right.
  const bool shortFirst = flanks.canClose && !openers_.empty() && openers_.back().mark == run.substr(0, 1);
  takeOne(run.substr(0, shortFirst ? 1 : 2), flanks.canOpen, flanks.canClose);
  takeOne(run.substr(0, shortFirst ? 2 : 1), flanks.canOpen, flanks.canClose);
}

void InlineParser::takeOne(std::string_view mark, bool canOpen, bool canClose) {
  if (canClose && close(mark, styleOf(mark))) return;
  if (canOpen && openers_.size() < maxOpeners) openers_.push_back({mark, pieces_.size()});
  addText(mark);
}

bool InlineParser::isOpen(char mark) const {
  const auto begins = [mark](const Opener& opener) { return opener.mark.front() == mark; };
  return std::any_of(openers_.begin(), openers_.end(), begins);
}

/// Makes the latest opener of that mark open the style and ends it here; marks left open in between are text.
bool InlineParser::close(std::string_view mark, Attributes attrs) {
  for (std::size_t index = openers_.size(); index-- > 0;) {
    if (openers_[index].mark != mark) continue;
    Piece& opener = pieces_[openers_[index].piece];
    if (openers_[index].piece + 1 == pieces_.size()) return false;  // nothing stands between
    opener.kind = Piece::Kind::open;
    opener.attrs = std::move(attrs);
    openers_.resize(index);
    pieces_.push_back({Piece::Kind::close, {}, {}});
    return true;
  }
  return false;
}

void InlineParser::takeOpenBracket() {
  if (openers_.size() == maxOpeners) return void(++at_);
  flush();
  openers_.push_back({"[", pieces_.size()});
  addText(source_.substr(at_, 1));
  literalFrom_ = ++at_;
}

void InlineParser::takeCloseBracket() {
  if (!isOpen('[')) return void(++at_);
  flush();
  std::size_t end = at_ + 1;
  std::optional<Attributes> attrs = bracketTail(end);
  if (attrs && close("[", std::move(*attrs))) {
    at_ = literalFrom_ = end;
    return;
  }
  if (openers_.back().mark == "[") openers_.pop_back();
  ++at_;
}

/// What a "]" gives to the text before it: `(target)`, `{list}` or both. Moves `at` behind it.
std::optional<Attributes> InlineParser::bracketTail(std::size_t& at) const {
  if (at >= source_.size()) return std::nullopt;
  Attributes attrs;
  if (source_[at] == '(' && !takeTarget(at, attrs)) return std::nullopt;
  if (at < source_.size() && source_[at] == '{' && !takeAttributes(at, attrs) && attrs.empty())
    return std::nullopt;
  if (attrs.empty()) return std::nullopt;
  return attrs;
}

bool InlineParser::takeAttributes(std::size_t& at, Attributes& attrs) const {
  AttributeListReader list(source_.substr(at));
  Attributes read;
  bool hasId = false;
  const bool isList = list.read([&](const ListItem& item) {
    hasId = hasId || (item.key == "#" && !item.quotedKey);
    read.set(item.key, item.value);
  });
  if (!isList || hasId) return false;
  for (const Attribute& entry : read) attrs.set(entry.key, entry.value);
  at += list.length();
  return true;
}

bool InlineParser::takeTarget(std::size_t& at, Attributes& attrs) const {
  std::size_t end = at + 1;
  if (end < source_.size() && source_[end] == '<') {
    const std::size_t close = source_.find_first_of("<>\n", end + 1);
    if (close == std::string_view::npos || source_[close] != '>') return false;
    attrs.set("a", source_.substr(end + 1, close - end - 1));
    end = close + 1;
  } else if (!takeBareTarget(end, attrs)) {
    return false;
  }
  if (end + 1 < source_.size() && source_[end] == ' ' && source_[end + 1] == '"') {
    const std::size_t close = source_.find('"', end + 2);
    if (close == std::string_view::npos) return false;
    attrs.set("title", source_.substr(end + 2, close - end - 2));
    end = close + 1;
  }
  if (end >= source_.size() || source_[end] != ')') return false;
  at = end + 1;
  return true;
}

/// A target without blanks whose parentheses pair up.
bool InlineParser::takeBareTarget(std::size_t& at, Attributes& attrs) const {
  std::string target;
  int open = 0;
  for (; at < source_.size() && source_[at] != ' ' && source_[at] != '\t'; ++at) {
    char c = source_[at];
    if (c == ')' && open == 0) break;
    if (c == '(' && ++open > maxUrlParentheses) return false;
    if (c == ')') --open;
    if (c == '\\' && at + 1 < source_.size() && isPunctuation(source_[at + 1])) c = source_[++at];
    target += c;
  }
  attrs.set("a", target);
  return open == 0;
}

Text InlineParser::assemble() const {
  Text text;
  std::vector<const Attributes*> styles;
  for (const Piece& piece : pieces_) {
    if (piece.kind == Piece::Kind::open) {
      styles.push_back(&piece.attrs);
    } else if (piece.kind == Piece::Kind::close) {
      styles.pop_back();
    } else {
      Attributes attrs;
      for (const Attributes* style : styles) {
        for (const Attribute& entry : *style) attrs.set(entry.key, entry.value);
      }
      text.append(piece.text, std::move(attrs));
    }
  }
  return text;
}

}  // namespace

Text parseInline(std::string_view source) {
  if (source.find_first_of("\\&`*_~=[") == std::string_view::npos) return Text(std::string(source));
  return InlineParser(source).parse();
}

}  // namespace vell::formats
