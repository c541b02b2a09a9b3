#include "outline_path/tokens.h"

#include <charconv>
#include <cmath>

#include "outline_path/characters.h"
#include "outline_path/literals.h"

namespace vell::outline_path {
namespace {

bool isBareWord(std::string_view word) { return !isKeyword(word) && !isConstant(word) && !isNumber(word); }

bool isFunctionName(std::string_view word) {
  return nameLength(word) != 0 && !isKeyword(word) && !isConstant(word) &&
         word.find("::") == std::string_view::npos;
}

}  // namespace

bool isUnquotedWord(std::string_view word) { return word.front() != '-' && isBareWord(word); }

bool isTextWord(std::string_view word) {
  return word.front() != '-' && word.front() != '.' && word.find("::") == std::string_view::npos &&
         !typeTestOf(word) && isBareWord(word);
}

bool isLoneWord(std::string_view text) {
  std::size_t open = 0, closed = 0;
  const auto skip = [&text](char bracket, std::size_t& count) {
    for (; !text.empty() && (isBlank(text.front()) || text.front() == bracket); text.remove_prefix(1))
      count += text.front() == bracket ? 1 : 0;
  };
  skip('(', open);
  const std::string_view word = text.substr(0, wordLength(text));
  text.remove_prefix(word.size());
  skip(')', closed);
  return text.empty() && open == closed && !word.empty() && isUnquotedWord(word);
}

bool isFiniteNumber(std::string_view word) { return isNumber(word) && std::isfinite(numberOf(word)); }
bool isBoolean(std::string_view word) { return word == trueWord || word == falseWord; }
bool isNull(std::string_view word) { return word == nullWord; }

std::size_t functionNameLength(std::string_view text) {
  const std::size_t length = wordLength(text);
  const bool isCalled = length != 0 && length < text.size() && text[length] == '(';
  return isCalled && isFunctionName(text.substr(0, length)) ? length : 0;
}

std::size_t relationLength(std::string_view text) {
  const auto op = relationAt(text);
  return op ? spelling(*op).size() : 0;
}

std::size_t relationModifierLength(std::string_view text) {
  return !text.empty() && relationModifierOf(text.front()) ? 1 : 0;
}

std::size_t nodeTypeLength(std::string_view text) {
  const std::size_t length = wordLength(text);
  return typeTestOf(text.substr(0, length)) ? length : 0;
}

std::size_t namedAxisLength(std::string_view text) {
  for (const Axis axis : namedAxes()) {
    if (text.substr(0, spelling(axis).size()) == spelling(axis)) return spelling(axis).size();
  }
  return 0;
}

std::size_t integerLength(std::string_view text) {
  std::int64_t integer = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), integer);
  return error == std::errc() ? static_cast<std::size_t>(end - text.data()) : 0;
}

std::int64_t integerOf(std::string_view text) {
  std::int64_t integer = 0;
  std::from_chars(text.data(), text.data() + text.size(), integer);
  return integer;
}

bool isDivisor(std::string_view text) {
  if (text.empty()) return false;
  const char c = text.front();
  if (c == '@' || c == '$' || c == '(' || c == '"') return true;
  if (isDigit(c)) return isNumber(text.substr(0, wordLength(text)));
  return functionNameLength(text) != 0;
}

}  // namespace vell::outline_path
