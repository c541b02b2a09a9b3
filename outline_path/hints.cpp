// A sentence for each habit from other languages, and for slips.
#include <algorithm>
#include <vector>

#include "outline_path/characters.h"
#include "outline_path/diagnostic.h"
#include "outline_path/words.h"
#include "text/edit_distance.h"

namespace vell::outline_path {
namespace {

/// The place of an error with the words around it.
struct Place {
  std::string_view text;
  std::size_t index;
  Diagnostic::Kind kind;

  std::string_view rest() const { return text.substr(index); }
  std::string_view before() const { return text.substr(0, index); }
  char behind() const { return index < text.size() ? text[index] : '\0'; }
  char previous() const { return index > 0 ? text[index - 1] : '\0'; }

  /// The word that the place is at or in, or that ends there.
  std::string_view word() const {
    std::size_t begin = index;
    while (begin > 0 && isWordByte(text[begin - 1])) --begin;
    return text.substr(begin, wordLength(text.substr(begin)));
  }
  /// The word before the blanks before the place.
  std::string_view wordBefore() const {
    std::size_t end = index;
    while (end > 0 && isBlank(text[end - 1])) --end;
    return Place{text.substr(0, end), end, kind}.word();
  }
  static bool isWordByte(char c) { return static_cast<unsigned char>(c) >= 0x80 || wordLength({&c, 1}) == 1; }
};

/// The one of `words` that `word` is most like, if it is like any.
template <typename Words>
std::string_view nearest(std::string_view word, const Words& words) {
  constexpr std::size_t kShortestWord = 3;
  if (word.size() < kShortestWord) return {};
  std::vector<std::string_view> candidates;
  for (const auto entry : words) candidates.push_back(spelling(entry));
  return text::nearest(word, candidates);
}

std::string didYouMean(std::string_view word, std::string_view what, std::string_view nearby) {
  const std::string unknown = "\"" + std::string(word) + "\" is no " + std::string(what);
  return nearby.empty() ? "" : unknown + "; did you mean \"" + std::string(nearby) + "\"?";
}

// Each of these looks for one habit and returns the sentence for it, or nothing.

std::string quoteHint(const Place& place) {
  const bool isQuote = place.behind() == '\'' || place.previous() == '\'';
  return isQuote ? "strings stand in double quotes: write \"text\", not 'text'." : "";
}

std::string equalsHint(const Place& place) {
  const bool isDouble = place.behind() == '=' && place.previous() == '=';
  return isDouble ? "a single \"=\" compares: write @name = \"value\"." : "";
}

std::string bracketHint(const Place& place) {
  const bool isSlice = isDigit(place.behind()) || place.behind() == '-' || place.behind() == '\0';
  if (place.kind != Diagnostic::Kind::notAnInteger || place.previous() != '[' || isSlice) return "";
  return "predicates are bare, brackets hold slices: write //task @done, not //task[@done].";
}

std::string signHint(const Place& place) {
  const std::string_view sign = place.rest().substr(0, 2);
  if (sign == "&&") return "write \"and\" with blanks around it.";
  if (sign == "||" || place.behind() == '|')
    return "write \"or\" between predicates, \"union\" between paths.";
  if (place.behind() == '!') return "write \"not\" before a predicate, \"!=\" between values.";
  return "";
}

bool isWordOperator(std::string_view word) {
  const auto isOne = [&](const auto& ops) { return std::find(ops.begin(), ops.end(), word) != ops.end(); };
  return isOne(kSetOps) || isOne(kPredicateOps);
}

std::string blankHint(const Place& place) {
  const std::string_view word = place.word();
  if (!isWordOperator(word)) return "";
  const bool isGlued = place.rest().substr(0, word.size()) != word || place.index == 0 ||
                       !isBlank(place.previous()) || place.rest().size() == word.size() ||
                       !isBlank(place.rest()[word.size()]);
  if (!isGlued) return "";
  const std::string sides =
      word == spelling(PredicateOp::notOf) ? " needs a blank behind it." : " needs a blank on both sides.";
  return "\"" + std::string(word) + "\"" + sides;
}

std::string axisHint(const Place& place) {
  for (const std::string_view word : {place.word(), place.wordBefore()}) {
    const std::size_t colons = word.find("::");
    if (colons == std::string_view::npos) continue;
    const std::string_view axis = word.substr(0, colons + 2);
    const auto axes = verboseAxes();
    if (std::any_of(axes.begin(), axes.end(), [&](Axis known) { return spelling(known) == axis; })) continue;
    const std::string hint = didYouMean(axis, "axis", nearest(axis, axes));
    if (!hint.empty()) return hint;
  }
  return "";
}

std::string typeTestHint(const Place& place) {
  const std::string_view word = place.wordBefore();
  const bool isFilter = word.data() != place.text.data() && *(word.data() - 1) == '/';
  if (!isFilter || typeTestOf(word) || isKeyword(word)) return "";
  return didYouMean(word, "type test", nearest(word, typeTests()));
}

std::string loneWordHint(std::string_view word) {
  const std::string name(word);
  return "a path begins with an axis or \"/\": write //" + name + " to search all rows, ./" + name +
         " to search from here.";
}

std::string comparisonHint(const Place& place) {
  const bool isTopLevel = place.kind == Diagnostic::Kind::leftover && relationAt(place.rest());
  return isTopLevel ? "a comparison is a predicate of a step: write //* @name = \"value\"." : "";
}

std::string bareWordHint(const Place& place) {
  const std::string word(place.rest().substr(0, wordLength(place.rest())));
  const bool isText = isBlank(place.previous()) && !word.empty() && !isKeyword(word) && !isNumber(word);
  return isText ? "text to search for stands in double quotes: write \"" + word + "\"." : "";
}

std::string firstWordHint(const Place& place) {
  const std::string_view begin = place.text.substr(skipBlanks(place.text, 0));
  const std::string_view word = begin.substr(0, wordLength(begin));
  const bool isStep = !word.empty() && begin.substr(word.size()).substr(0, 1) == "/";
  return isStep && !isNumber(word) && !isConstant(word) ? loneWordHint(word) : "";
}

}  // namespace

std::string hintFor(const Diagnostic& diagnostic, std::string_view text) {
  if (diagnostic.kind == Diagnostic::Kind::invalidUtf8 || diagnostic.kind == Diagnostic::Kind::tooDeep)
    return "";
  const Place place{text, diagnostic.index, diagnostic.kind};
  if (diagnostic.kind == Diagnostic::Kind::loneWord) {
    const std::string axis = axisHint(place);
    return axis.empty() ? loneWordHint(place.word()) : axis;
  }
  for (const auto habit : {quoteHint, equalsHint, bracketHint, signHint, blankHint, firstWordHint, axisHint,
                           typeTestHint, comparisonHint, bareWordHint}) {
    std::string hint = habit(place);
    if (!hint.empty()) return hint;
  }
  return "";
}

}  // namespace vell::outline_path
