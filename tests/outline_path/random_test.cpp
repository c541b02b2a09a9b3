// Properties over random trees and damaged texts. A failure names its seed.
#include <gtest/gtest.h>

#include "outline_path/characters.h"
#include "outline_path/parse.h"
#include "outline_path/path_check.h"
#include "outline_path/print.h"
#include "random_tree.h"
#include "traced.h"

namespace vell::outline_path {
namespace {

TEST(RandomTrees, PrintAsTextThatParsesToTheSameTree) {
  for (unsigned seed = 0; seed < 5000; ++seed) {
    const Expression tree = RandomTree(seed).expression(static_cast<int>(seed % 5));
    const std::string text = print(tree);
    const ParseResult parsed = parseBothWays(text);
    ASSERT_FALSE(parsed.error) << "seed " << seed << "\n" << render(*parsed.error, text);
    ASSERT_EQ(parsed.expression, tree) << "seed " << seed << ": " << text << "\n"
                                       << print(*parsed.expression);
    ASSERT_EQ(print(*parsed.expression), text);
  }
}

/// Whatever is parsed: an error lies within the text, and a tree prints as text of the same tree.
void expectSound(const std::string& text) {
  const ParseResult result = parseBothWays(text);
  if (result.error) {
    ASSERT_LE(result.error->index, text.size()) << text;
    ASSERT_FALSE(render(*result.error, text).empty());
    return;
  }
  const std::string printed = print(*result.expression);
  const ParseResult again = parse(printed, {.allowValueExpression = true});
  ASSERT_FALSE(again.error) << text << "\n" << printed;
  ASSERT_EQ(again.expression, result.expression) << text << "\n" << printed;
}

constexpr const char* kLong =
    "(//task @done =[il] \"tr\\u0075e\" and not (@a + -1.5 / 2 >= count(../run::* \"x\"))[1:-2]/..//b) "
    "except "
    "following-sibling::heading $v != null or f(.a, (1 * foo)) < 2 intersect /";

TEST(DamagedTexts, AnyCharacterReplacedIsHandled) {
  const std::string text = kLong;
  ASSERT_FALSE(parse(text).error) << render(*parse(text).error, text);
  for (std::size_t at = 0; at < text.size(); ++at) {
    for (const char c : std::string("\x01'#]é", 5)) {
      std::string damaged = text;
      damaged[at] = c;
      expectSound(damaged);
    }
    expectSound(text.substr(0, at));
    expectSound(text.substr(at));
  }
}

std::vector<std::string> dictionary() {
  std::vector<std::string> words{" ", "(",  ")", "[", "]", "\"",   "@a", "$v",
                                 ",", "::", "1", "-", "+", "\xff", "\\u"};
  for (const auto word : keywords()) words.emplace_back(word);
  for (const Axis axis : verboseAxes()) words.emplace_back(spelling(axis));
  for (const TypeTest test : typeTests()) words.emplace_back(spelling(test));
  return words;
}

TEST(DamagedTexts, RandomEditsAreHandled) {
  const auto words = dictionary();
  std::mt19937 random(4);
  const auto pick = [&](std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
  };
  std::string text = kLong;
  for (int round = 0; round < 5000; ++round) {
    if (round % 12 == 0) text = kLong;
    const std::size_t at = pick(text.size() + 1);
    if (pick(3) == 0) text.erase(at, pick(6));
    if (pick(3) != 0) text.insert(at, words[pick(words.size())]);
    ASSERT_NO_FATAL_FAILURE(expectSound(text)) << "round " << round;
  }
}

}  // namespace
}  // namespace vell::outline_path
