#include "outline_path/word_rules.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "outline_path/characters.h"
#include "outline_path/numbers.h"
#include "outline_path/operators.h"
#include "outline_path/words.h"

namespace vell::outline_path::rules {
namespace {

template <typename Entry>
std::size_t found(ParseContext& context, Entry entry, std::size_t length) {
  context.entry = static_cast<std::uint8_t>(entry);
  return length;
}

/// So many digits are no infinity.
constexpr std::size_t kSurelyFinite = std::numeric_limits<double>::max_exponent10;

bool isBareWord(std::string_view word) { return !isKeyword(word) && !isConstant(word) && !isNumber(word); }

}  // namespace

bool isUnquotedWord(std::string_view word, const ParseContext&) {
  return word.front() != '-' && isBareWord(word);
}

bool isTextWord(std::string_view word, const ParseContext&) {
  return word.front() != '-' && word.front() != '.' && word.find("::") == std::string_view::npos &&
         !typeTestOf(word) && isBareWord(word);
}

bool isFiniteNumber(std::string_view word, const ParseContext&) {
  return isNumber(word) && (word.size() <= kSurelyFinite || std::isfinite(numberOf(word)));
}
bool isBoolean(std::string_view word, const ParseContext&) { return word == kTrue || word == kFalse; }
bool isNull(std::string_view word, const ParseContext&) { return word == kNull; }

std::size_t functionName(std::string_view text, ParseContext& context) {
  return context.lookahead.functionNameLength(context.text.size() - text.size());
}

std::size_t relationOp(std::string_view text, ParseContext& context) {
  const auto op = context.lookahead.relation(context.text.size() - text.size());
  return op ? found(context, *op, spelling(*op).size()) : 0;
}

std::size_t relationModifier(std::string_view text, ParseContext& context) {
  for (std::size_t i = 0; i < kRelationModifiers.size(); ++i) {
    if (!text.empty() && text.front() == kRelationModifiers[i]) return found(context, i, 1);
  }
  return 0;
}

std::size_t nodeType(std::string_view text, ParseContext& context) {
  const std::size_t length = wordLength(text);
  const auto test = typeTestOf(text.substr(0, length));
  return test ? found(context, *test, length) : 0;
}

std::size_t namedAxis(std::string_view text, ParseContext& context) {
  if (text.empty()) return 0;
  if (text.front() == '.') {
    const bool isParent = text.substr(0, 2) == spelling(Axis::parentShortcut);
    return isParent ? found(context, Axis::parentShortcut, 2) : found(context, Axis::selfShortcut, 1);
  }
  std::size_t length = 0;
  while (length < text.size() && ((text[length] >= 'a' && text[length] <= 'z') || text[length] == '-'))
    ++length;
  if (text.size() - length < 2 || text[length] != ':') return 0;
  const auto axis = verboseAxisOf(text.substr(0, length + 2));
  return axis ? found(context, *axis, length + 2) : 0;
}

std::size_t sliceInteger(std::string_view text, ParseContext& context) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), context.integer);
  return error == std::errc() ? static_cast<std::size_t>(end - text.data()) : 0;
}

bool isDivisor(const ParseContext& context, std::size_t at) { return context.lookahead.isDivisor(at); }
bool valueIsAllowed(const ParseContext& context, std::size_t) { return context.allowValueExpression; }

}  // namespace vell::outline_path::rules
