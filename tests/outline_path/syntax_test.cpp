// What parses, as which tree, and how it prints.
#include <gtest/gtest.h>

#include <string>

#include "outline_path/parse.h"
#include "outline_path/print.h"
#include "traced.h"

namespace vell::outline_path {
namespace {

struct Accepted {
  const char* text;
  /// The canonical text; the same as the text where null.
  const char* canonical = nullptr;
};

const std::string kTooSmall = "//* @a = 0." + std::string(330, '0') + "1";

const Accepted kAccepted[] = {
    // Steps and what they imply
    {"/"},
    {"//", "//*"},
    {"//*"},
    {"/child::task", "/task"},
    {"child::", "child::*"},
    {"child::task"},
    {".."},
    {"..[0]"},
    {"parent::*"},
    {".task"},
    {"..task/.."},
    {"//task//", "//task//*"},
    {".//*"},
    {"  //task\t\n", "//task"},
    {"/*/ancestor-or-self::note/preceding-sibling::hr[-1]"},
    {"run::run/descendant-or-self::body/following::codeblock/self::ordered"},
    // Words that are a text test
    {".a", ".\"a\""},
    {"./a", "./\"a\""},
    {"//row-x", "//\"row-x\""},
    {"//2024-01-02", "//\"2024-01-02\""},
    {"//日本", "//\"日本\""},
    {"//Task", "//\"Task\""},
    // Predicates
    {"//task @done"},
    {"//task   not  @done", "//task not @done"},
    {"//not @a"},
    {"//* not @a and @b or @c"},
    {"//* not not (@a)"},
    {"//* ( @a or @b ) and @c/..", "//* (@a or @b) and @c/.."},
    {"//* @and or @union"},
    {"//* \"x\""},
    {"//* (\"a\" = \"b\")"},
    {"//* (@a) = 1"},
    {"//* (1 + 2) > 2"},
    {"//* @a:b.c-d = é"},
    {"//* @a=1", "//* @a = 1"},
    {"//* \"a\"contains\"b\"", "//* \"a\" contains \"b\""},
    {"//* @a contains[i] x"},
    {"//* @a <=[nl] 5"},
    {"//* @a matches[s] \"^a\\\\b\""},
    {"//foo = 1"},
    {"//task foo != bar"},
    // Values
    {"//* @a = 1.5"},
    {"//* @a = 007.50", "//* @a = 7.5"},
    {"//* @a = 123456789012345678901234567890", "//* @a = 123456789012345680000000000000"},
    {kTooSmall.c_str(), "//* @a = 0"},
    {"//* @a = 2024-01-02"},
    {"//* @a = 20abc"},
    {"//* @a = 1e5"},
    {"//* @a = .5"},
    {"//* @a = -1 - --2 * -@b"},
    {"//* @a = null"},
    {"//* @a = nullable"},
    {"//* @a = $and"},
    {"//* @a = \"\\u0041\\ud83d\\ude00\\/\\n\\u0001\"", "//* @a = \"A😀/\\n\\u0001\""},
    {"//* @a + 1 * 2 > 3"},
    {"//* @a = (1 / 2)"},
    // Functions
    {"//* f() = 1"},
    {"//* f( ) = 1", "//* f() = 1"},
    {"//* count(//*) = count( child::task @done , \"x\",y)",
     "//* count(//*) = count(child::task @done, \"x\", y)"},
    {"//* f(.., ., .5, .b + 1, (//*), (1)) > 0"},
    {"//* nth-child(2) = true"},
    {"//* f(//* count(child::*) > 0) = 1"},
    // "/" divides or begins the next step
    {"//* @a / @b = 1"},
    {"//* @a/@b = 1", "//* @a / @b = 1"},
    {"//* @a/\"x\"/f()/(1)/2/$v = 1", "//* @a / \"x\" / f() / (1) / 2 / $v = 1"},
    {"//* @a/child::@b = 1"},
    {"//* (@a or @b)/@c = 1", "//* (@a or @b)/child::@c = 1"},
    {"//* (@a)/(@b or @c)/@d = 1", "//* (@a)/(@b or @c)/child::@d = 1"},
    {"//task @done = \"true\"/.."},
    {"//task @done/@x"},
    {"//task @a = @b/@c", "//task @a = @b / @c"},
    {"//task @p = 1/2", "//task @p = 1 / 2"},
    {"//* @x = 1/@y + 4 / $n", "//* @x = 1 / @y + 4 / $n"},
    {"//* @x = 1/count(child::*)", "//* @x = 1 / count(child::*)"},
    {"//* @x = 1/(2)", "//* @x = 1 / (2)"},
    {"//* @x = 1/\"2\"", "//* @x = 1 / \"2\""},
    {"//task @p = 4/2/..", "//task @p = 4 / 2/.."},
    {"//task @p = 4/2/task @a", "//task @p = 4 / 2/task @a"},
    {"//task @p = 4/*/@x"},
    {"//task @p = 4//@x"},
    {"//task @p = 4/-2 = 1"},
    {"//task @p = 4/child::@x"},
    {"//task not @p = 4/child::@x"},
    {"//task @p = 4/child::(@x)"},
    {"//task @p = 4/not @x"},
    {"//task @p = 4/20-x", "//task @p = 4/child::\"20-x\""},
    {"//task @p = 4[0]/@x"},
    {"//task @a = 1/foo = 2"},
    // Slices
    {"//task[0]"},
    {"//task @done[-1]"},
    {"//task[1:5]/note[:3]"},
    {"//task[:]"},
    {"//[3:]", "//*[3:]"},
    {"//*[-9223372036854775808:9223372036854775807]"},
    {"//task @a = x[2]"},
    // Sets
    {"//heading union //task"},
    {"//a except //b intersect /", "//\"a\" except //\"b\" intersect /"},
    {"((//*) union ..) intersect ( / )", "((//*) union ..) intersect (/)"},
    {"//task intersect //*  @done", "//task intersect //* @done"},
};

const Accepted kAcceptedValues[] = {
    {"1 + 2"}, {"\"x\""},        {"@a"},           {"true"}, {"count(//*)"},
    {"(1)"},   {"4/2", "4 / 2"}, {"a+b", "a + b"}, {"-a"},
};

void expectAccepted(const Accepted& row, bool allowValue) {
  SCOPED_TRACE(row.text);
  const ParseResult parsed = parseBothWays(row.text, allowValue);
  ASSERT_FALSE(parsed.error) << render(*parsed.error, row.text);
  const std::string printed = print(*parsed.expression);
  EXPECT_EQ(printed, row.canonical != nullptr ? row.canonical : row.text);
  const ParseResult again = parse(printed, {allowValue});
  EXPECT_FALSE(again.error);
  EXPECT_EQ(again.expression, parsed.expression);
}

TEST(Syntax, Accepts) {
  for (const Accepted& row : kAccepted) expectAccepted(row, false);
}

TEST(Syntax, AcceptsValuesWhereAllowed) {
  for (const Accepted& row : kAcceptedValues) {
    expectAccepted(row, true);
    EXPECT_TRUE(parse(row.text).error) << row.text;
  }
}

TEST(Syntax, GivesTrees) {
  // Binding and associativity, which the canonical text alone does not show.
  const auto treeOf = [](const char* text) { return treeText(*parse(text, {true}).expression); };
  EXPECT_EQ(treeOf("1 - 2 - 3"), "+ -\n| + 1\n| + -\n| | + 2\n| | + 3\n");
  EXPECT_EQ(treeOf("1 + 2 * -3"), "+ +\n| + 1\n| + *\n| | + 2\n| | + -\n| | | + 3\n");
  EXPECT_EQ(treeOf("f(true, null, $v, foo, \"a\\nb\")"),
            "+ func f\n| + args\n| | + true\n| | + null\n| | + value $v\n| | + unquoted foo\n| | + value "
            "\"a\\nb\"\n");
}

}  // namespace
}  // namespace vell::outline_path
