#include "outline_path/near_miss.h"

#include <algorithm>
#include <vector>

#include "outline_path/parse.h"
#include "text/edit_distance.h"

namespace vell::outline_path {
namespace {

std::string_view typeTestLike(std::string_view word) {
  constexpr std::size_t kShortestWord = 3;
  constexpr std::size_t kShortestPart = 4;  // "code", "quote"
  if (word.size() < kShortestWord) return {};
  std::vector<std::string_view> tests;
  for (const TypeTest test : typeTests()) tests.push_back(spelling(test));
  const std::string_view nearby = text::nearest(word, tests);
  if (!nearby.empty() || word.size() < kShortestPart) return nearby;
  const auto holdsWord = [&](std::string_view test) { return test.find(word) != std::string_view::npos; };
  const auto found = std::find_if(tests.begin(), tests.end(), holdsWord);
  return found == tests.end() ? std::string_view() : *found;
}

std::string hintFor(const Step& step, std::string_view path) {
  const PredicateExpression* predicate = step.predicate();
  const auto* search = predicate == nullptr ? nullptr : std::get_if<ContainsText>(&predicate->node);
  if (search == nullptr || step.filter().typeTest) return "";
  const std::string quoted = '"' + search->text + '"';
  if (path.find(quoted) != std::string_view::npos) return "";
  const std::string_view meant = typeTestLike(search->text);
  if (meant.empty()) return "";
  return quoted + " is no type test but searches for text; did you mean \"" + std::string(meant) + "\"?";
}

std::string hintFor(const PathExpression& expression, std::string_view text) {
  const auto eitherSide = [&](const auto& node) {
    const std::string left = hintFor(*node.left, text);
    return left.empty() ? hintFor(*node.right, text) : left;
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

}  // namespace vell::outline_path
