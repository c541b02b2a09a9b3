// Colours of a text as it is typed, and what its trace shows of an error.
#include <gmock/gmock.h>

#include "outline_path/highlight.h"

namespace vell::outline_path {
namespace {

struct Highlighted {
  const char* text;
  /// Below each byte: "/" a separator, "x" an axis, "a" an attribute, "r" a relation, "p" a predicate's
  /// operator, "s" a set operator, "u" an unquoted word, "!" the error.
  const char* colours;
};

const Highlighted kTexts[] = {
    {"//task", "/x"},
    {"/heading/task @done/..", "/       /     aaaaa/xx"},
    {"ancestor-or-self::task", "xxxxxxxxxxxxxxxxxx"},
    {"//* not (@a or \"x\") and @b =[i] foo", "/x  ppp  aa pp      ppp aa rrrr uuu"},
    {"(//a union //b) except .. intersect .", " /xu sssss /xu  ssssss xx sssssssss x"},
    {"//task @n contains[sl] 5 / x", "/x     aa rrrrrrrrrrrr     !"},
    {"1 + count(//* @a)", "          /x  aa"},
    {"//task[@done]", "/x     !"},
    {"//task @done ==", "/x     aaaaa r!"},
    {"//task @", "/x      !"},
    {"//é \"é", "/xuu !"},
};

std::string coloursOf(const OutlinePathWithParse& path) {
  std::string colours(path.expression.size() + 1, ' ');
  for (const HighlightedRange& range : highlight(path)) {
    const std::size_t length = std::max<std::size_t>(range.end - range.begin, 1);
    colours.replace(range.begin, length, length, "rps!aux/"[static_cast<int>(range.syntaxClass)]);
  }
  return colours.substr(0, colours.find_last_not_of(' ') + 1);
}

TEST(Highlight, ColoursWhatMatched) {
  for (const Highlighted& row : kTexts) {
    const OutlinePathWithParse path(row.text, {.allowValueExpression = true, .trace = true});
    EXPECT_EQ(coloursOf(path), row.colours) << row.text;
  }
}

TEST(DebugDescription, ShowsTheWayToTheError) {
  const auto described = [](const char* text, bool trace) {
    return OutlinePathWithParse(text, {.trace = trace}).debugDescription();
  };
  using testing::HasSubstr;
  EXPECT_THAT(
      described("//task @done =", true),
      AllOf(HasSubstr("| | | + contains attribute @done\n\n-- Parse Trace --\n\nENTER OutlinePathParser\n"),
            HasSubstr("    ERROR PredicateExpressionComparisonParser\n"),
            testing::EndsWith("\nERROR OutlinePathParser\n\n"), testing::Not(HasSubstr("MATCH"))));
  EXPECT_EQ(described("//task", true), OutlinePathWithParse("//task").compactDescription());
  EXPECT_EQ(described("//task @", false), OutlinePathWithParse("//task @").compactDescription());
  EXPECT_EQ(OutlinePathWithParse("//task uniom", {.trace = true}).longestTopLevelMatch(), 6);
}

}  // namespace
}  // namespace vell::outline_path
