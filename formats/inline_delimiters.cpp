#include "formats/inline_delimiters.h"

#include <utf8proc.h>

#include <algorithm>
#include <map>
#include <tuple>

#include "text/utf8.h"

namespace vell::formats {
namespace {

/// Punctuation and symbols; their categories stand side by side.
bool isMarkLike(utf8proc_category_t category) {
  return category >= UTF8PROC_CATEGORY_PC && category <= UTF8PROC_CATEGORY_SO;
}

CharacterClass classOf(char32_t c) {
  const utf8proc_category_t category = utf8proc_category(static_cast<utf8proc_int32_t>(c));
  if (c == '\t' || c == '\n' || c == '\f' || c == '\r' || category == UTF8PROC_CATEGORY_ZS)
    return CharacterClass::blank;
  return isMarkLike(category) ? CharacterClass::punctuation : CharacterClass::other;
}

bool isTwin(char mark) { return mark == '~' || mark == '='; }

}  // namespace

CharacterClass classAt(std::string_view text, std::size_t at) {
  return at < text.size() ? classOf(text::firstCodePoint(text.substr(at)).value) : CharacterClass::blank;
}

CharacterClass classBefore(std::string_view text, std::size_t at) {
  if (at == 0) return CharacterClass::blank;
  std::size_t begin = at - 1;
  while (begin > 0 && at - begin < 4 && text::isContinuation(text[begin])) --begin;
  return classAt(text, begin);
}

Flanks flanksOf(char mark, CharacterClass before, CharacterClass after) {
  using enum CharacterClass;
  const bool left = after == other || (after == punctuation && before != other);
  const bool right = before == other || (before == punctuation && after != other);
  if (mark == '=') return {after != blank, before != blank};
  if (mark != '_') return {left, right};
  return {left && (!right || before == punctuation), right && (!left || after == punctuation)};
}

void Delimiters::add(std::string_view source, std::size_t at, std::size_t length) {
  if (isTwin(source[at]) && length != 2) return;
  const Flanks flanks = flanksOf(source[at], classBefore(source, at), classAt(source, at + length));
  if (flanks.canOpen || flanks.canClose)
    runs_.push_back({source[at], at, at + length, length, flanks.canOpen, flanks.canClose});
}

/// A run that could both open and close pairs only where the lengths of the two do not add up to a multiple
/// of three, unless both are one.
bool Delimiters::match(const Run& opener, const Run& closer) {
  if (opener.mark != closer.mark) return false;
  if (isTwin(opener.mark) || (!opener.canClose && !closer.canOpen)) return true;
  return (opener.length + closer.length) % 3 != 0 || (opener.length % 3 == 0 && closer.length % 3 == 0);
}

void Delimiters::pair(std::size_t from, std::vector<Piece>& pieces) {
  std::vector<std::size_t> openers;
  // What a search for an opener has passed over in vain it need not look at again.
  std::map<std::tuple<char, bool, std::size_t>, std::size_t> searchedUpTo;
  for (std::size_t index = from; index < runs_.size(); ++index) {
    Run& closer = runs_[index];
    while (closer.canClose && closer.begin < closer.end) {
      std::size_t& searched = searchedUpTo[{closer.mark, closer.canOpen, closer.length % 3}];
      std::size_t found = openers.size();
      while (found > 0 && openers[found - 1] >= searched && !match(runs_[openers[found - 1]], closer))
        --found;
      if (found == 0 || openers[found - 1] < searched) {
        searched = index;
        break;
      }
      Run& opener = runs_[openers[found - 1]];
      const std::size_t use =
          std::min({opener.end - opener.begin, closer.end - closer.begin, std::size_t{2}});
      const std::string mark(use, closer.mark);
      pieces.push_back({Piece::Kind::open, opener.end - use, opener.end, {}, styleOf(mark)});
      pieces.push_back({Piece::Kind::close, closer.begin, closer.begin + use, {}, {}});
      opener.end -= use;
      closer.begin += use;
      openers.resize(opener.begin < opener.end ? found : found - 1);
    }
    if (closer.canOpen && closer.begin < closer.end) openers.push_back(index);
  }
  drop(from);
}

}  // namespace vell::formats
