#include "formats/inline_draft.h"

#include <algorithm>
#include <span>

#include "formats/attribute_list.h"

namespace vell::formats {
namespace {

/// Escaping one thing can bring out another, as in "[[a](u)](u)"; after so many rounds all is escaped at
/// once.
constexpr int maxRounds = 8;

constexpr std::string_view special = "\\&`*_~=[]<!";

}  // namespace

void Draft::append(std::string_view source, Byte kind) {
  source_ += source;
  bytes_.insert(bytes_.end(), source.size(), kind);
}

void Draft::add(const Draft& other) {
  source_ += other.source_;
  bytes_.insert(bytes_.end(), other.bytes_.begin(), other.bytes_.end());
}

void Draft::addMarkup(std::string_view source) { append(source, Byte::markup); }

void Draft::addText(std::string_view text) {
  const auto isReferred = [&](std::size_t at) { return isControl(text[at]) && text[at] != '\t'; };
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at;
    while (end < text.size() && !isReferred(end)) ++end;
    append(text.substr(at, end - at), Byte::text);
    for (at = end; at < text.size() && isReferred(at); ++at) {
      std::string reference;
      appendReference(reference, text[at]);
      addMarkup(reference);
    }
  }
}

void Draft::addPiece(std::string_view source, const Piece& piece) {
  const bool isText = piece.kind == Piece::Kind::text || piece.kind == Piece::Kind::unit;
  append(source.substr(piece.begin, piece.end - piece.begin), isText ? Byte::keptText : Byte::markup);
}

bool Draft::settle(const Text& text, LineFeeds lineFeeds) {
  escapeEnds();
  for (int round = 0; round < maxRounds; ++round) {
    const std::vector<Piece> pieces = readPieces(source_, lineFeeds);
    if (readsAs(text, pieces)) return true;
    Places places = findMisread(pieces);
    if (places.empty()) places = findSuspects();
    if (places.empty()) return false;
    escape(places);
  }
  escape(findText(special, [](std::size_t) { return true; }));
  return readsAs(text, readPieces(source_, lineFeeds));
}

bool Draft::readsAs(const Text& text, const std::vector<Piece>& pieces) const {
  return trim(source_) == source_ && textOf(source_, pieces) == text;
}

/// What callers and the lines around do with the ends of a text: blanks and a braced list are cut off before
/// it is read, a backslash at the end is a sign of its own, and one is put before what would begin a fence or
/// a rule, which must not take a mark from a longer run.
void Draft::escapeEnds() {
  if (source_.empty()) return;
  const auto isOneOf = [&](std::size_t at, std::string_view characters) {
    return isText(at) && characters.find(source_[at]) != std::string_view::npos;
  };
  Places ends;
  std::size_t front = isOneOf(0, "`~*_=") ? runLength(source_, 0) : 0;
  if (front < 3) front = isOneOf(0, " \t\n") ? 1 : 0;
  for (std::size_t at = 0; at < front && isText(at); ++at) ends.push_back(at);
  std::size_t back = source_.size();
  while (back > front && isOneOf(back - 1, "\\")) --back;
  if (back == source_.size() && back > front && (isOneOf(back - 1, " \t\n") || endsInTrailer())) --back;
  for (; back < source_.size(); ++back) ends.push_back(back);
  escape(ends);
}

bool Draft::endsInTrailer() const {
  std::string_view line = source_;
  RowTrailer trailer;
  return line.back() == '}' && isText(line.size() - 1) && takeTrailer(line, Times::kept, trailer);
}

/// The text that is read as something else.
Draft::Places Draft::findMisread(const std::vector<Piece>& pieces) const {
  Places places;
  std::vector<const Piece*> openers;
  for (const Piece& piece : pieces) {
    switch (piece.kind) {
      case Piece::Kind::text:
        break;
      case Piece::Kind::decoded:
        if (isText(piece.begin)) places.push_back(piece.begin);
        break;
      case Piece::Kind::unit:  // one of its own is text throughout
        if (isText(piece.begin) && hasMarkup(piece)) places.push_back(piece.begin);
        break;
      case Piece::Kind::open:
        openers.push_back(&piece);
        break;
      case Piece::Kind::close:
        addMarks(places, *openers.back(), piece);
        openers.pop_back();
        break;
    }
  }
  std::sort(places.begin(), places.end());
  return places;
}

bool Draft::hasMarkup(const Piece& piece) const {
  const auto bytes = std::span(bytes_).subspan(piece.begin, piece.end - piece.begin);
  return std::find(bytes.begin(), bytes.end(), Byte::markup) != bytes.end();
}

/// Takes the text that begins or ends a style: of brackets one is enough, of marks the one that was added,
/// where the other was kept. A backslash keeps backticks from beginning code, but not from ending it.
void Draft::addMarks(Places& places, const Piece& open, const Piece& close) const {
  const Places first = textMarks(open);
  const Places last = textMarks(close);
  const auto isAdded = [&](const Places& marks) {
    return !marks.empty() && bytes_[marks.front()] == Byte::text;
  };
  const char mark = source_[open.begin];
  const bool isCode = mark == '`';
  const bool isBracket = mark == '[' || mark == '<';
  const bool takesFirst = isBracket || isCode || isAdded(first) || !isAdded(last);
  const bool takesLast = isBracket ? first.empty()
                         : isCode  ? isAdded(last) && !first.empty()
                                   : isAdded(last) || !isAdded(first);
  if (takesFirst) places.insert(places.end(), first.begin(), first.end());
  if (takesLast) places.insert(places.end(), last.begin(), last.end());
}

/// Of the marks that a piece consists of ("**", backticks beside a blank, the "]" of a link) those that are
/// text.
Draft::Places Draft::textMarks(const Piece& piece) const {
  Places places;
  std::size_t at = piece.begin;
  if (source_[at] == ' ') ++at;
  for (const char mark = source_[at]; at < piece.end && source_[at] == mark; ++at) {
    if (isText(at)) places.push_back(at);
  }
  return places;
}

/// Where one of the characters stands as text that was added as such.
template <class Fits>
Draft::Places Draft::findText(std::string_view characters, Fits&& fits) const {
  Places places;
  for (std::size_t at = source_.find_first_of(characters); at != std::string::npos;
       at = source_.find_first_of(characters, at + 1)) {
    if (bytes_[at] == Byte::text && fits(at)) places.push_back(at);
  }
  return places;
}

/// What may keep markup from being read as such: text that touches it, brackets that are no pair, at last
/// anything.
Draft::Places Draft::findSuspects() const {
  const auto touchesMarkup = [&](std::size_t at) {
    return (at > 0 && !isText(at - 1)) || (at + 1 < source_.size() && !isText(at + 1));
  };
  const auto any = [](std::size_t) { return true; };
  Places places = findBlanksAtBreaks();
  if (places.empty()) places = findText(special, touchesMarkup);
  if (places.empty()) places = findText("[]", any);
  if (places.empty()) places = findText(special, any);
  return places;
}

Draft::Places Draft::findBlanksAtBreaks() const {
  Places places;
  const auto isTextBlank = [&](std::size_t at) {
    return at < source_.size() && isText(at) && isBlank(source_[at]);
  };
  const auto isMarkupBlank = [&](std::size_t at) {
    return at < source_.size() && !isText(at) && isBlank(source_[at]);
  };
  for (std::size_t at = source_.find('\n'); at != std::string::npos; at = source_.find('\n', at + 1)) {
    if (isText(at)) continue;
    std::size_t begin = at;
    std::size_t end = at + 1;
    while (begin > 0 && isMarkupBlank(begin - 1)) --begin;
    while (isMarkupBlank(end)) ++end;
    if (begin > 0 && isTextBlank(begin - 1)) places.push_back(begin - 1);
    if (isTextBlank(end)) places.push_back(end);
  }
  return places;
}

/// Puts a backslash before punctuation and a reference in the place of other characters; from then on these
/// are markup.
void Draft::escape(const Places& places) {
  if (places.empty()) return;
  Draft escaped;
  std::size_t done = 0;
  const auto copyUpTo = [&](std::size_t end) {
    escaped.source_.append(source_, done, end - done);
    escaped.bytes_.insert(escaped.bytes_.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(done),
                          bytes_.begin() + static_cast<std::ptrdiff_t>(end));
    done = end;
  };
  for (const std::size_t place : places) {
    copyUpTo(place);
    std::string written;
    if (isPunctuation(source_[place])) {
      written = {'\\', source_[place]};
    } else {
      appendReference(written, source_[place]);
    }
    escaped.addMarkup(written);
    ++done;
  }
  copyUpTo(source_.size());
  *this = std::move(escaped);
}

}  // namespace vell::formats
