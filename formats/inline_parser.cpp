#include <algorithm>
#include <optional>
#include <unordered_map>
#include <utility>

#include "formats/inline_delimiters.h"
#include "formats/inline_pieces.h"
#include "formats/inline_units.h"

namespace vell::formats {
namespace {

/// Brackets that wait for their end at a time; the outer ones of more are text. Bounds the work for each
/// character.
constexpr std::size_t maxBrackets = 64;

class InlineParser {
 public:
  InlineParser(std::string_view source, LineFeeds lineFeeds)
      : source_(source), lineFeeds_(lineFeeds), html_(source) {}

  std::vector<Piece> parse() {
    while (at_ < source_.size()) step();
    delimiters_.pair(0, pieces_);
    return tiled();
  }

 private:
  /// A "[" or "![" that waits for its "]".
  struct Bracket {
    std::size_t begin;
    bool isImage;
    // What the source held before it.
    std::size_t pieces;
    std::size_t delimiters;
  };

  void step();
  void takeEscape();
  void takeReference();
  void takeCode();
  void takeAngle();
  void takeLineFeed();
  void takeOpenBracket(bool isImage);
  void takeCloseBracket();
  void closeImage(const Bracket& bracket, std::size_t end);
  void closeStyle(const Bracket& bracket, BracketTail tail);
  std::size_t findCodeEnd(std::size_t from, std::size_t length);
  bool breaksAt(std::size_t at) const { return lineFeeds_ == LineFeeds::breaks && source_[at] == '\n'; }
  void addUnit(std::size_t begin, std::size_t end);
  void addBreaks(std::size_t begin, std::size_t end);
  void add(Piece piece);
  std::vector<Piece> tiled();

  std::string_view source_;
  LineFeeds lineFeeds_;
  std::size_t at_ = 0;
  std::size_t decodedUpTo_ = 0;
  std::vector<Piece> pieces_;  ///< all but text, in any order
  Delimiters delimiters_;
  HtmlFinder html_;
  std::vector<Bracket> brackets_;
  std::size_t insideLinkBelow_ = 0;  ///< so many of the brackets hold a link already and cannot be one
  std::optional<std::unordered_map<std::size_t, std::size_t>> lastBackticks_;
};

void InlineParser::step() {
  switch (source_[at_]) {
    case '\\':
      return takeEscape();
    case '&':
      return takeReference();
    case '`':
      return takeCode();
    case '<':
      return takeAngle();
    case '*':
    case '_':
    case '~':
    case '=': {
      const std::size_t length = runLength(source_, at_);
      delimiters_.add(source_, at_, length);
      return void(at_ += length);
    }
    case '!':
      if (source_.substr(at_).starts_with("![")) return takeOpenBracket(true);
      return void(++at_);
    case '[':
      return takeOpenBracket(false);
    case ']':
      return takeCloseBracket();
    case '\n':
      return takeLineFeed();
    default:
      ++at_;
  }
}

/// Takes what follows the last piece, or lies around it.
void InlineParser::add(Piece piece) {
  at_ = decodedUpTo_ = piece.end;
  pieces_.push_back(std::move(piece));
}

void InlineParser::takeEscape() {
  const std::size_t next = at_ + 1;
  if (next < source_.size() && isPunctuation(source_[next]))
    return add({Piece::Kind::decoded, at_, at_ + 2, std::string(1, source_[next]), {}});
  if (next < source_.size() && breaksAt(next)) {
    const std::size_t end = std::min(source_.find_first_not_of(" \t", next + 1), source_.size());
    return add({Piece::Kind::decoded, at_, end, "\n", {}});
  }
  ++at_;
}

void InlineParser::takeReference() {
  std::string character;
  const std::size_t length = decodeReference(source_.substr(at_), character);
  if (length == 0) return void(++at_);
  add({Piece::Kind::decoded, at_, at_ + length, std::move(character), {}});
}

/// The blanks on both sides belong to a break.
void InlineParser::takeLineFeed() {
  if (!breaksAt(at_)) return void(++at_);
  std::size_t begin = at_;
  while (begin > decodedUpTo_ && (source_[begin - 1] == ' ' || source_[begin - 1] == '\t')) --begin;
  const bool isHard = source_.substr(begin, at_ - begin).ends_with("  ");
  const std::size_t end = std::min(source_.find_first_not_of(" \t", at_ + 1), source_.size());
  add({Piece::Kind::decoded, begin, end, isHard ? "\n" : " ", {}});
}

/// Makes the breaks in what is taken as one stand for blanks.
void InlineParser::addBreaks(std::size_t begin, std::size_t end) {
  if (lineFeeds_ == LineFeeds::text) return;
  for (std::size_t at = source_.find('\n', begin); at < end; at = source_.find('\n', at)) {
    const std::size_t behind = std::min(source_.find_first_not_of(" \t", at + 1), end);
    pieces_.push_back({Piece::Kind::decoded, at, behind, " ", {}});
    at = behind;
  }
}

void InlineParser::addUnit(std::size_t begin, std::size_t end) {
  const std::size_t firstBreak = lineFeeds_ == LineFeeds::breaks ? source_.find('\n', begin) : end;
  add({Piece::Kind::unit, begin, std::min(firstBreak, end), {}, {}});
  addBreaks(begin, end);
  at_ = decodedUpTo_ = end;
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
  if (end == std::string_view::npos) return void(at_ = start);
  const auto isPad = [&](std::size_t at) { return source_[at] == ' ' || breaksAt(at); };
  const std::string_view code = source_.substr(start, end - start);
  const bool padded = code.size() > 1 && isPad(start) && isPad(end - 1) &&
                      code.find_first_not_of(lineFeeds_ == LineFeeds::breaks ? " \n" : " ") != code.npos;
  const std::size_t pad = padded ? 1 : 0;
  add({Piece::Kind::open, at_, start + pad, {}, {{"code", ""}}});
  addBreaks(start + pad, end - pad);
  add({Piece::Kind::close, end - pad, end + length, {}, {}});
}

void InlineParser::takeAngle() {
  const std::string_view rest = source_.substr(at_);
  if (const auto target = autolinkTarget(rest)) {
    const std::size_t close = source_.find('>', at_);
    add({Piece::Kind::open, at_, at_ + 1, {}, {{"a", *target}}});
    return add({Piece::Kind::close, close, close + 1, {}, {}});
  }
  const std::size_t end = html_.endOf(at_);
  if (end == std::string_view::npos) return void(++at_);
  addUnit(at_, end);
}

void InlineParser::takeOpenBracket(bool isImage) {
  if (brackets_.size() == maxBrackets) {
    brackets_.erase(brackets_.begin());
    if (insideLinkBelow_ > 0) --insideLinkBelow_;
  }
  brackets_.push_back({at_, isImage, pieces_.size(), delimiters_.size()});
  at_ += isImage ? 2 : 1;
}

void InlineParser::takeCloseBracket() {
  if (brackets_.empty()) return void(++at_);
  const Bracket bracket = brackets_.back();
  const bool mayLink = brackets_.size() > insideLinkBelow_;
  brackets_.pop_back();
  insideLinkBelow_ = std::min(insideLinkBelow_, brackets_.size());
  auto tail = readBracketTail(source_, at_ + 1);
  if (!tail) return void(++at_);
  const bool isEmpty = at_ == bracket.begin + (bracket.isImage ? 2 : 1);
  if (tail->isLink && bracket.isImage) return closeImage(bracket, tail->end);
  if (isEmpty || (tail->isLink && !mayLink)) return void(++at_);
  closeStyle(bracket, std::move(*tail));
}

void InlineParser::closeImage(const Bracket& bracket, std::size_t end) {
  pieces_.resize(bracket.pieces);
  delimiters_.drop(bracket.delimiters);
  addUnit(bracket.begin, end);
}

void InlineParser::closeStyle(const Bracket& bracket, BracketTail tail) {
  delimiters_.pair(bracket.delimiters, pieces_);
  if (tail.isLink) insideLinkBelow_ = brackets_.size();
  const std::size_t open = bracket.begin + (bracket.isImage ? 1 : 0);
  pieces_.push_back({Piece::Kind::open, open, open + 1, {}, std::move(tail.style)});
  add({Piece::Kind::close, at_, tail.end, {}, {}});
}

/// Puts the pieces in order and makes text of what lies between them.
std::vector<Piece> InlineParser::tiled() {
  std::sort(pieces_.begin(), pieces_.end(), [](const Piece& a, const Piece& b) { return a.begin < b.begin; });
  std::vector<Piece> tiles;
  std::size_t end = 0;
  const auto fill = [&](std::size_t begin) {
    if (begin > end) tiles.push_back({Piece::Kind::text, end, begin, {}, {}});
  };
  for (Piece& piece : pieces_) {
    fill(piece.begin);
    end = piece.end;
    tiles.push_back(std::move(piece));
  }
  fill(source_.size());
  return tiles;
}

}  // namespace

std::vector<Piece> readPieces(std::string_view source, LineFeeds lineFeeds) {
  return InlineParser(source, lineFeeds).parse();
}

std::string_view textOf(std::string_view source, const Piece& piece) {
  switch (piece.kind) {
    case Piece::Kind::open:
    case Piece::Kind::close:
      return {};
    case Piece::Kind::decoded:
      return piece.decoded;
    default:
      return source.substr(piece.begin, piece.end - piece.begin);
  }
}

Text textOf(std::string_view source, const std::vector<Piece>& pieces) {
  Text text;
  std::vector<Attributes> styles{{}};   // each with what the ones around it say
  std::vector<std::size_t> current{0};  // the styles that are open
  for (const Piece& piece : pieces) {
    if (piece.kind == Piece::Kind::open) {
      Attributes style = styles[current.back()];
      for (const Attribute& entry : piece.style) style.set(entry.key, entry.value);
      if (style != styles[current.back()])
        styles.push_back(std::move(style)), current.push_back(styles.size() - 1);
      else
        current.push_back(current.back());
    } else if (piece.kind == Piece::Kind::close) {
      current.pop_back();
      styles.resize(current.back() + 1);
    } else {
      text.append(textOf(source, piece), styles[current.back()]);
    }
  }
  return text;
}

Text parseInline(std::string_view source, LineFeeds lineFeeds) {
  if (source.find_first_of("\\&`*_~=[<\n") == std::string_view::npos) return Text(std::string(source));
  return textOf(source, readPieces(source, lineFeeds));
}

}  // namespace vell::formats
