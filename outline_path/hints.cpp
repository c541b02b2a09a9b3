// A sentence for each spelling from other languages, and for slips.
#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <vector>

#include "outline_path/characters.h"
#include "outline_path/diagnostic.h"
#include "outline_path/tokens.h"
#include "outline_path/words.h"
#include "text/edit_distance.h"
#include "text/utf8.h"

namespace vell::outline_path {
namespace {

/// The place of an error with the words around it.
struct Place {
  std::string_view text;
  std::size_t index;
  Diagnostic::Kind kind;
  ExpectedSet expected;

  std::string_view rest() const { return text.substr(index); }
  std::string_view before() const { return text.substr(0, index); }
  /// The same without the blanks at its end.
  std::string_view beforeBlanks() const {
    std::size_t end = index;
    while (end > 0 && isBlank(text[end - 1])) --end;
    return text.substr(0, end);
  }
  char behind() const { return index < text.size() ? text[index] : '\0'; }
  char previous() const { return index > 0 ? text[index - 1] : '\0'; }
  bool isBehindBlank() const { return index > 0 && isBlank(previous()); }
  bool expects(Expected one) const { return expected.contains(one); }

  /// The word that the place is at or in, or that ends there.
  std::string_view word() const { return wordAt(text, index); }
  /// The word before the blanks before the place.
  std::string_view wordBefore() const { return wordAt(beforeBlanks(), beforeBlanks().size()); }
  /// The word that begins at the place.
  std::string_view nextWord() const { return rest().substr(0, wordLength(rest())); }

  static std::string_view wordAt(std::string_view text, std::size_t index) {
    std::size_t begin = index;
    while (begin > 0 && isWordByte(text[begin - 1])) --begin;
    return text.substr(begin, wordLength(text.substr(begin)));
  }
  static bool isWordByte(char c) { return static_cast<unsigned char>(c) >= 0x80 || wordLength({&c, 1}) == 1; }
};

/// The one of `words` that `word` is most like, if it is like any.
template <typename Words>
std::string_view nearest(std::string_view word, const Words& words) {
  constexpr std::size_t shortestWord = 3;
  if (word.size() < shortestWord) return {};
  std::vector<std::string_view> candidates;
  for (const auto entry : words) candidates.push_back(spelling(entry));
  return text::nearest(word, candidates);
}

std::string didYouMean(std::string_view word, std::string_view what, std::string_view nearby) {
  const std::string unknown = "\"" + std::string(word) + "\" is no " + std::string(what);
  return nearby.empty() ? "" : unknown + "; did you mean \"" + std::string(nearby) + "\"?";
}

std::string quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

template <typename Words>
bool isOneOf(std::string_view word, const Words& words) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

/// What people write for something that is written otherwise here.
struct ForeignSpelling {
  std::string_view written;
  std::string_view hint;
};

template <std::size_t count>
std::string hintAmong(const std::array<ForeignSpelling, count>& spellings, std::string_view written) {
  for (const ForeignSpelling& spelling : spellings) {
    if (spelling.written == written) return std::string(spelling.hint);
  }
  return "";
}

// Each of these looks for one kind of slip and returns the sentence for it, or nothing.

constexpr std::string_view plainQuotes = "strings stand in double quotes: write \"text\", not 'text'.";

bool isInvisible(char32_t c) {
  const bool isControl = (c < 0x20 && !isBlank(static_cast<char>(c))) || (c >= 0x7F && c <= 0xA0);
  return isControl || c == 0xAD || (c >= 0x2000 && c <= 0x200F) || (c >= 0x2028 && c <= 0x202F) ||
         (c >= 0x205F && c <= 0x206F) || c == 0x3000 || (c >= 0xFE00 && c <= 0xFE0F) || c == 0xFEFF;
}

/// The first invisible character that stands in no string.
std::optional<char32_t> findInvisible(std::string_view text) {
  bool isInString = false;
  while (!text.empty()) {
    const text::CodePoint point = text::firstCodePoint(text);
    if (!isInString && isInvisible(point.value)) return point.value;
    if (point.value == '"') isInString = !isInString;
    const bool isEscape = isInString && point.value == '\\' && text.size() > 1;
    text.remove_prefix(point.length + (isEscape ? 1 : 0));
  }
  return std::nullopt;
}

std::string characterHint(const Place& place) {
  if (const auto c = findInvisible(place.text)) {
    std::array<char, 8> digits{};
    std::snprintf(digits.data(), digits.size(), "%04X", static_cast<unsigned>(*c));
    return std::string("the character U+") + digits.data() + " is no blank here: write a plain one, or none.";
  }
  if (place.behind() == '\'' || place.previous() == '\'') return std::string(plainQuotes);
  const char32_t c = text::firstCodePoint(place.rest()).value;
  const bool isSmartQuote = (c >= 0x2018 && c <= 0x201F) || c == 0xAB || c == 0xBB;
  return isSmartQuote ? "strings stand in plain double quotes: write \"text\"." : "";
}

constexpr std::array foreignRelations{
    ForeignSpelling{"==", "a single \"=\" compares: write @name = \"value\"."},
    ForeignSpelling{"<>", "\"!=\" says that values differ: write @name != \"value\"."},
    ForeignSpelling{"=~", "\"matches\" compares with a pattern: write @name matches \"pattern\"."},
    ForeignSpelling{"=>", "write \">=\" for greater or equal."},
    ForeignSpelling{"=<", "write \"<=\" for less or equal."},
};

std::string relationSignHint(const Place& place) {
  return place.index == 0 ? "" : hintAmong(foreignRelations, place.text.substr(place.index - 1, 2));
}

std::string modifierHint(const Place& place) {
  const std::string_view before = place.beforeBlanks();
  const bool isBehindRelation =
      place.expects(Expected::value) && !before.empty() &&
      (relationAt(before.substr(before.size() - 1)) || isKeyword(place.wordBefore()));
  return place.behind() == '[' && place.isBehindBlank() && isBehindRelation
             ? "a modifier stands right behind its relation: write @name =[i] \"value\"."
             : "";
}

std::string bracketHint(const Place& place) {
  if (place.expects(Expected::sliceEnd) && place.expects(Expected::sliceColon) &&
      (place.behind() == '.' || place.behind() == '-' || place.behind() == ','))
    return "a slice from one row to another is written [start:end]: [1:5].";
  const bool isSlice = isDigit(place.behind()) || place.behind() == '-' || place.behind() == '\0';
  if (place.kind != Diagnostic::Kind::notAnInteger || place.previous() != '[' || isSlice) return "";
  constexpr std::array<std::string_view, 3> places{"first", "last", "position"};
  if (isOneOf(place.nextWord(), places))
    return "slices count from 0: [0] takes the first row, [-1] the last.";
  return "predicates are bare, brackets hold slices: write //task @done, not //task[@done].";
}

std::string signHint(const Place& place) {
  const std::string_view sign = place.rest().substr(0, 2);
  if (sign == "&&") return "write \"and\" with blanks around it.";
  if (sign == "||" || place.behind() == '|')
    return "write \"or\" between predicates, \"union\" between paths.";
  if (place.behind() == '!') return "write \"not\" before a predicate, \"!=\" between values.";
  if (place.behind() == '#') return "a row's id is an attribute: write //* @id = \"id\".";
  return "";
}

/// "and" and "or" where paths are joined.
std::string joinedPathsHint(const Place& place) {
  const std::string_view word = place.nextWord();
  const bool isAnd = word == spelling(PredicateOp::andOf);
  if (!isAnd && word != spelling(PredicateOp::orOf)) return "";
  const std::size_t next = skipBlanks(place.text, place.index + word.size());
  if (next == place.text.size() || place.text[next] != '/') return "";
  return quoted(word) + " joins predicates: write " +
         quoted(spelling(isAnd ? SetOp::intersect : SetOp::unionOf)) + " between paths.";
}

std::string operatorHint(const Place& place) {
  const std::string_view word = place.word().empty() ? place.wordBefore() : place.word();
  const bool isNot = word == spelling(PredicateOp::notOf);
  const bool joinsPaths = isOneOf(word, setOps);
  if (!joinsPaths && !isOneOf(word, predicateOps)) return "";
  const std::size_t begin = static_cast<std::size_t>(word.data() - place.text.data());
  const std::size_t end = begin + word.size();
  const bool isLast = skipBlanks(place.text, end) == place.text.size();
  const bool isFirst = skipBlanks(place.text, 0) == begin;
  const bool isGlued = (begin > 0 && !isBlank(place.text[begin - 1])) ||
                       (end < place.text.size() && !isBlank(place.text[end]));
  if (isNot)
    return isGlued ? "\"not\" needs a blank behind it." : isLast ? "\"not\" stands before a predicate." : "";
  if (isGlued) return quoted(word) + " needs a blank on both sides.";
  if (isLast || isFirst)
    return quoted(word) + " stands between two " + (joinsPaths ? "paths." : "predicates.");
  return "";
}

std::string axisHint(const Place& place) {
  const std::size_t length = namedAxisLength(place.rest());
  if (length > 1 && place.before().ends_with("//"))
    return "\"//\" is an axis itself: write /" + std::string(place.rest().substr(0, length)) + "* or //*.";
  for (std::size_t colons = place.text.find("::"); colons != std::string_view::npos;
       colons = place.text.find("::", colons + 2)) {
    std::string_view axis = Place::wordAt(place.text, colons);
    axis = axis.substr(0, axis.find("::") + 2);
    const auto axes = verboseAxes();
    if (axis.size() == 2 ||
        std::any_of(axes.begin(), axes.end(), [&](Axis one) { return spelling(one) == axis; }))
      continue;
    const auto ending =
        std::find_if(axes.begin(), axes.end(), [&](Axis one) { return spelling(one).ends_with(axis); });
    const std::string hint =
        didYouMean(axis, "axis", ending != axes.end() ? spelling(*ending) : nearest(axis, axes));
    if (!hint.empty()) return hint;
  }
  return "";
}

std::string typeTestHint(const Place& place) {
  const std::string_view word = place.wordBefore();
  const bool isFilter = !word.empty() && word.data() != place.text.data() && *(word.data() - 1) == '/';
  if (!isFilter || typeTestOf(word) || isKeyword(word)) return "";
  return didYouMean(word, "type test", nearest(word, typeTests()));
}

std::string loneWordHint(std::string_view word) {
  const std::string_view type = word.substr(0, word.find('.'));
  if (type.size() + 1 < word.size() && typeTestOf(type))
    return "an attribute stands behind \"@\": write //" + std::string(type) + " @" +
           std::string(word.substr(type.size() + 1)) + ".";
  const std::string name(word);
  return "a path begins with an axis or \"/\": write //" + name + " to search all rows, ./" + name +
         " to search from here.";
}

std::string comparisonHint(const Place& place) {
  const auto relation = relationAt(place.rest());
  if (!relation) return "";
  const std::string op = quoted(spelling(*relation));
  if (place.rest().substr(spelling(*relation).size()).starts_with('('))
    return op + " is a relation, no function: write @name " + std::string(spelling(*relation)) +
           " \"value\".";
  if (place.expects(Expected::predicate))
    return op + " compares values, not paths: write //* @name = \"value\".";
  if (place.expects(Expected::predicateOp)) return "comparisons do not chain: write 1 < @name and @name < 5.";
  return place.kind == Diagnostic::Kind::leftover
             ? "a comparison is a predicate of a step: write //* @name = \"value\"."
             : "";
}

/// Arithmetic with a path, or with what is not compared.
std::string arithmeticHint(const Place& place) {
  constexpr std::string_view signs = "+-*";
  const bool isBehindPath = (place.expects(Expected::setOp) || place.expects(Expected::separator)) &&
                            !place.expects(Expected::filter) && !place.expects(Expected::arithmetic);
  if (isBehindPath && place.behind() != '\0' && signs.find(place.behind()) != std::string_view::npos)
    return std::string("arithmetic takes values, not paths: write count(//*) ") + place.behind() + " 1.";
  std::string_view before = place.beforeBlanks();
  before.remove_suffix(place.wordBefore().size());
  before = before.substr(0, before.find_last_not_of(" ") + 1);
  const bool isSum = !before.empty() && signs.find(before.back()) != std::string_view::npos;
  return isSum && place.rest().empty() && place.expects(Expected::relation)
             ? "a predicate compares values: write //* @name - 1 > 0."
             : "";
}

/// A predicate at a place where none may stand.
std::string predicateHint(const Place& place) {
  const bool isPredicate = place.behind() == '@' || place.behind() == '"' || place.behind() == '(';
  const std::string_view before = place.beforeBlanks();
  if (place.expects(Expected::relation) && !place.expects(Expected::separator) &&
      !place.expects(Expected::predicateOp) && before.ends_with(')'))
    return "functions give values, so compare them: write leaf() = true, count(child::*) > 0.";
  if (!isPredicate) return "";
  if (!place.isBehindBlank())
    return place.expects(Expected::slice) ? "a predicate needs a blank before it: write //task @done." : "";
  if (before.ends_with(']')) return "a slice stands behind the predicate: write //task @done[0].";
  return place.expects(Expected::predicateOp) ? "write \"and\" or \"or\" between predicates." : "";
}

constexpr std::array foreignWords{
    ForeignSpelling{"startswith", "\"startswith\" is no relation: write \"beginswith\"."},
    ForeignSpelling{"starts-with", "\"starts-with\" is no relation: write \"beginswith\"."},
    ForeignSpelling{"like", "\"like\" is no relation: write \"contains\" or \"matches\"."},
    ForeignSpelling{"in", "\"in\" is no relation: write @name = 1 or @name = 2."},
    ForeignSpelling{"is", "\"is\" is no relation: write @name = true."},
};

/// A word where only a keyword may stand, or text without its quotes.
std::string wordHint(const Place& place) {
  const std::string_view word = place.nextWord();
  if (word.empty() || !place.isBehindBlank() || isKeyword(word) || isNumber(word) || word.front() == '-')
    return "";
  std::string hint = hintAmong(foreignWords, word);
  if (!hint.empty()) return hint;
  std::vector<std::string_view> words(keywords().begin(), keywords().end());
  const std::string_view nearby = text::nearest(word, words);
  if (!nearby.empty() && text::editDistance(word, nearby) == 0)
    return "keywords are written in lower case: write " + quoted(nearby) + ".";
  hint = word.size() < 3 || typeTestOf(word) ? "" : didYouMean(word, "keyword", nearby);
  if (!hint.empty()) return hint;
  if (place.expects(Expected::predicate))
    return "text to search for stands in double quotes: write " + quoted(word) + ".";
  const std::string_view before = place.beforeBlanks();
  const std::string_view slashes = before.substr(before.find_last_not_of('/') + 1);
  return slashes.empty()
             ? ""
             : "no blank stands within a step: write " + std::string(slashes) + std::string(word) + ".";
}

std::string firstWordHint(const Place& place) {
  const std::string_view begin = place.text.substr(skipBlanks(place.text, 0));
  const std::string_view word = begin.substr(0, wordLength(begin));
  if (word.empty())
    return begin.starts_with('*') ? "a path begins with an axis or \"/\": write //* for all rows." : "";
  const char next = word.size() < begin.size() ? begin[word.size()] : '\0';
  const bool isStep = next == '/' || next == '[';
  return isStep && !isNumber(word) && !isConstant(word) ? loneWordHint(word) : "";
}

}  // namespace

std::string hintFor(const Diagnostic& diagnostic, std::string_view text) {
  if (diagnostic.kind == Diagnostic::Kind::invalidUtf8 || diagnostic.kind == Diagnostic::Kind::tooDeep)
    return "";
  const Place place{text, diagnostic.index, diagnostic.kind, diagnostic.expected};
  if (diagnostic.kind == Diagnostic::Kind::loneWord) {
    const std::string axis = axisHint(place);
    return axis.empty() ? loneWordHint(place.word()) : axis;
  }
  for (const auto find :
       {characterHint, relationSignHint, modifierHint, bracketHint, signHint, joinedPathsHint, operatorHint,
        firstWordHint, axisHint, typeTestHint, comparisonHint, arithmeticHint, predicateHint, wordHint}) {
    std::string hint = find(place);
    if (!hint.empty()) return hint;
  }
  return "";
}

}  // namespace vell::outline_path
