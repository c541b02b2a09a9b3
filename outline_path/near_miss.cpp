#include "outline_path/near_miss.h"

#include <algorithm>
#include <array>
#include <vector>

#include "outline_path/characters.h"
#include "outline_path/parse.h"
#include "text/edit_distance.h"

namespace vell::outline_path {
namespace {

std::string_view typeTestLike(std::string_view word) {
  constexpr std::size_t shortestWord = 3;
  constexpr std::size_t shortestPart = 4;  // "code", "quote"
  if (word.size() < shortestWord) return {};
  std::vector<std::string_view> tests;
  for (const TypeTest test : typeTests()) tests.push_back(spelling(test));
  const std::string_view nearby = text::nearest(word, tests);
  if (!nearby.empty() || word.size() < shortestPart) return nearby;
  const auto holdsWord = [&](std::string_view test) { return test.find(word) != std::string_view::npos; };
  const auto found = std::find_if(tests.begin(), tests.end(), holdsWord);
  return found == tests.end() ? std::string_view() : *found;
}

struct DateWord {
  std::string_view word, spelling;
};
constexpr std::array dateWords{
    DateWord{"today", "today()"},         DateWord{"now", "now()"},
    DateWord{"yesterday", "today() - 1"}, DateWord{"tomorrow", "today() + 1"},
    DateWord{"current-date", "today()"},  DateWord{"current-dateTime", "now()"},
};

/// How the date is written that `word` names, perhaps with days behind it ("today-7").
std::string spellingOfDate(std::string_view word) {
  for (const DateWord& date : dateWords) {
    if (!word.starts_with(date.word)) continue;
    const std::string_view rest = word.substr(date.word.size());
    if (rest.empty()) return std::string(date.spelling);
    if (rest.front() == '-' && isNumber(rest.substr(1)) && date.spelling.ends_with(')'))
      return std::string(date.spelling) + " - " + std::string(rest.substr(1));
  }
  return "";
}

std::string hintFor(const ValueExpression& value) {
  const auto* unquoted = std::get_if<Unquoted>(&value.node);
  return unquoted == nullptr ? "" : hintForDateWord(unquoted->word);
}

std::string firstOf(std::string hint, const auto& otherwise) { return hint.empty() ? otherwise() : hint; }

std::string hintFor(const PredicateExpression& predicate) {
  const auto eitherSide = [](const auto& left, const auto& right) {
    return firstOf(hintFor(left), [&] { return hintFor(right); });
  };
  if (const auto* node = std::get_if<Comparison>(&predicate.node)) return eitherSide(node->left, node->right);
  if (const auto* node = std::get_if<And>(&predicate.node)) return eitherSide(*node->left, *node->right);
  if (const auto* node = std::get_if<Or>(&predicate.node)) return eitherSide(*node->left, *node->right);
  if (const auto* node = std::get_if<Not>(&predicate.node)) return hintFor(*node->operand);
  if (const auto* node = std::get_if<PredicateGroup>(&predicate.node)) return hintFor(*node->inner);
  return "";
}

std::string hintFor(const Step& step, std::string_view path) {
  const PredicateExpression* predicate = step.predicate();
  if (predicate == nullptr) return "";
  const auto* search = std::get_if<ContainsText>(&predicate->node);
  if (search == nullptr) return hintFor(*predicate);
  if (step.filter().typeTest) return "";
  const std::string quoted = '"' + search->text + '"';
  if (path.find(quoted) != std::string_view::npos) return "";
  const std::string_view meant = typeTestLike(search->text);
  if (meant.empty()) return "";
  return quoted + " is no type test but searches for text; did you mean \"" + std::string(meant) + "\"?";
}

std::string hintFor(const PathExpression& expression, std::string_view text) {
  const auto eitherSide = [&](const auto& node) {
    return firstOf(hintFor(*node.left, text), [&] { return hintFor(*node.right, text); });
  };
  if (const auto* node = std::get_if<PathGroup>(&expression.node)) return hintFor(*node->inner, text);
  if (const auto* node = std::get_if<Union>(&expression.node)) return eitherSide(*node);
  if (const auto* node = std::get_if<Except>(&expression.node)) return eitherSide(*node);
  if (const auto* node = std::get_if<Intersect>(&expression.node)) return eitherSide(*node);
  for (const Step& step : std::get<Path>(expression.node).steps()) {
    std::string hint = hintFor(step, text);
    if (!hint.empty()) return hint;
  }
  return "";
}

}  // namespace

std::string hintForNoMatch(std::string_view path) {
  const ParseResult parsed = parse(path);
  const auto* expression = parsed.error ? nullptr : std::get_if<PathExpression>(&*parsed.expression);
  return expression == nullptr ? "" : hintFor(*expression, path);
}

std::string hintForDateWord(std::string_view word) {
  const std::string date = spellingOfDate(word), quoted = '"' + std::string(word) + '"';
  return date.empty()
             ? ""
             : quoted + " is a word here; write " + date + " for the date, " + quoted + " for the text";
}

std::string hintForFunction(std::string_view name) {
  if (const std::string date = spellingOfDate(name); !date.empty()) return "write " + date;
  std::vector<std::string_view> all;
  for (const auto names : functionNames()) all.insert(all.end(), names.begin(), names.end());
  const std::string_view nearby = text::nearest(name, all);
  return nearby.empty() || nearby == name ? "" : "did you mean " + std::string(nearby) + "()?";
}

}  // namespace vell::outline_path
