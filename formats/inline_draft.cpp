#include "formats/inline_draft.h"

#include "formats/attribute_list.h"

namespace vell::formats {
namespace {

/// Escaping one thing can bring out another, as in "[[a](u)](u)"; after so many rounds all is escaped at
/// once.
constexpr int maxRounds = 6;

constexpr std::string_view blanks = " \t\n";
constexpr std::string_view brackets = "[]";
constexpr std::string_view special = "\\&`*_~=[]<!";

}  // namespace

void Draft::add(std::string_view source, bool isText) {
  source_ += source;
  isText_.insert(isText_.end(), source.size(), isText);
}

void Draft::addMarkup(std::string_view source) { add(source, false); }

void Draft::addText(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at;
    while (end < text.size() && (!isControl(text[end]) || text[end] == '\t')) ++end;
    add(text.substr(at, end - at), true);
    for (at = end; at < text.size() && isControl(text[at]) && text[at] != '\t'; ++at) {
      std::string reference;
      appendReference(reference, text[at]);
      addMarkup(reference);
    }
  }
}

void Draft::addPiece(std::string_view source, const Piece& piece) {
  const bool isText = piece.kind == Piece::Kind::text || piece.kind == Piece::Kind::unit;
  add(source.substr(piece.begin, piece.end - piece.begin), isText);
}

void Draft::add(const Draft& other) {
  source_ += other.source_;
  isText_.insert(isText_.end(), other.isText_.begin(), other.isText_.end());
}

bool Draft::settle(const Text& text, LineFeeds lineFeeds) {
  escapeEnds();
  for (int round = 0; round < maxRounds; ++round) {
    const std::vector<Piece> pieces = readPieces(source_, lineFeeds);
    if (textOf(source_, pieces) == text) return true;
    std::vector<std::size_t> places = findMisread(pieces);
    // Else markup is read as text, most likely for a bracket that is no pair of its own.
    if (places.empty()) places = findText(brackets);
    if (places.empty()) places = findText(special);
    if (places.empty()) return false;
    escape(places);
  }
  escape(findText(special));
  return parseInline(source_, lineFeeds) == text;
}

/// What callers and the lines around do with the ends of a text: blanks and a braced list are cut off before
/// it is read, a backslash at the end is a sign of its own, and one is put before what would begin a fence or
/// a rule, which must not take a mark from a longer run.
void Draft::escapeEnds() {
  if (source_.empty()) return;
  const auto isText = [&](std::size_t at, std::string_view characters) {
    return isText_[at] && characters.find(source_[at]) != std::string_view::npos;
  };
  std::vector<std::size_t> ends;
  std::size_t front = isText(0, "`~*_=") ? runLength(source_, 0) : 0;
  if (front < 3) front = isText(0, blanks) ? 1 : 0;
  for (std::size_t at = 0; at < front && isText_[at]; ++at) ends.push_back(at);
  std::size_t back = source_.size();
  while (back > front && isText(back - 1, "\\")) --back;
  if (back == source_.size() && back > front && (isText(back - 1, blanks) || endsInTrailer())) --back;
  for (; back < source_.size(); ++back) ends.push_back(back);
  escape(ends);
}

bool Draft::endsInTrailer() const {
  std::string_view line = source_;
  RowTrailer trailer;
  return line.back() == '}' && isText_.back() && takeTrailer(line, Times::kept, trailer);
}

/// The text that is read as something else.
std::vector<std::size_t> Draft::findMisread(const std::vector<Piece>& pieces) const {
  std::vector<std::size_t> places;
  std::vector<bool> escapedOpeners;
  for (const Piece& piece : pieces) {
    const bool beginsInText = isText_[piece.begin];
    switch (piece.kind) {
      case Piece::Kind::text:
        break;
      case Piece::Kind::decoded:
        if (beginsInText) places.push_back(piece.begin);
        break;
      case Piece::Kind::unit:  // one of its own is text throughout
        for (std::size_t at = piece.begin; at < piece.end && beginsInText; ++at) {
          if (isText_[at]) continue;
          places.push_back(piece.begin);
          break;
        }
        break;
      case Piece::Kind::open:
        if (beginsInText) addMarks(places, piece);
        escapedOpeners.push_back(beginsInText);
        break;
      case Piece::Kind::close: {
        const bool isBracket = source_[piece.begin] == ']' || source_[piece.begin] == '>';
        if (!isBracket || !escapedOpeners.back()) addMarks(places, piece);
        escapedOpeners.pop_back();
        break;
      }
    }
  }
  return places;
}

/// The marks that an opening or closing piece consists of: "**", backticks beside a blank, the "]" of a link.
void Draft::addMarks(std::vector<std::size_t>& places, const Piece& piece) const {
  std::size_t at = piece.begin;
  if (source_[at] == ' ') ++at;
  for (const char mark = source_[at]; at < piece.end && source_[at] == mark; ++at) {
    if (isText_[at]) places.push_back(at);
  }
}

/// Where one of the characters stands as text.
std::vector<std::size_t> Draft::findText(std::string_view characters) const {
  std::vector<std::size_t> places;
  for (std::size_t at = source_.find_first_of(characters); at != std::string::npos;
       at = source_.find_first_of(characters, at + 1)) {
    if (isText_[at]) places.push_back(at);
  }
  return places;
}

/// Puts a backslash before punctuation and a reference in the place of other characters; from then on these
/// are markup.
void Draft::escape(const std::vector<std::size_t>& places) {
  if (places.empty()) return;
  Draft escaped;
  escaped.source_.reserve(source_.size() + places.size() * 5);
  escaped.isText_.reserve(source_.size() + places.size() * 5);
  std::size_t done = 0;
  const auto copyUpTo = [&](std::size_t end) {
    escaped.source_.append(source_, done, end - done);
    escaped.isText_.insert(escaped.isText_.end(), isText_.begin() + static_cast<std::ptrdiff_t>(done),
                           isText_.begin() + static_cast<std::ptrdiff_t>(end));
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
