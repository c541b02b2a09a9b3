// Properties over random and damaged texts. A failure names its seed.
#include <gtest/gtest.h>

#include "outline_path/parse.h"
#include "outline_path/print.h"
#include "tests/support/random_text.h"
#include "traced.h"

namespace vell::outline_path {
namespace {

/// Whatever is parsed: an error lies within the text, and a tree prints as text of the same tree. Whether
/// there was none.
bool parsesSoundly(const std::string& text) {
  const ParseResult result = parseBothWays(text);
  if (result.error) {
    EXPECT_LE(result.error->index, text.size()) << text;
    EXPECT_FALSE(render(*result.error, text).empty());
    return false;
  }
  const std::string printed = print(*result.expression);
  const ParseResult again = parse(printed, {.allowValueExpression = true});
  EXPECT_FALSE(again.error) << text << "\n" << printed;
  EXPECT_EQ(again.expression, result.expression) << text << "\n" << printed;
  return true;
}

const tests::Forms forms = {
    {"expression", {"`set`", "`set`", "`sum`"}},
    {"set",
     {"`path`", "`path`", "(`set`)", "`path` union `set`", "`path` except (`set`)", "(`set`) intersect `set`",
      "`path` intersect `path` except `set`"}},
    {"path", {"//*", "/", "/`steps`", "/`steps`", "//`step`", "`axis``step`", "`axis``step`/`steps`"}},
    {"steps", {"`step`", "`axis``step`", "`axis``step`/`steps`", "`step`//`steps`"}},
    {"axis", {"child::", "..", ".", "run::", "preceding-sibling::", "ancestor-or-self::"}},
    {"step", {"task", "`type``slice`", "`type` `predicate``slice`", "`predicate``slice`"}},
    {"type", {"*", "task", "row", "heading", "body"}},
    {"slice", {"", "", "[-1]", "[2]", "[1:]", "[:-3]", "[:]", "[-2:3]"}},
    {"predicate", {"@a", "`test`", "`test` and `predicate`", "`test` or `predicate`"}},
    {"test", {"@`name`", "`text`", "not `test`", "(`predicate`)", "`sum` `relation``modifier` `sum`"}},
    {"relation", {"=", "!=", "<=", "<", ">=", ">", "contains", "beginswith", "endswith", "matches"}},
    {"modifier", {"", "", "[i]", "[sl]", "[n]", "[dl]"}},
    {"sum", {"`product`", "`product` + `sum`", "`product` - `sum`"}},
    {"product", {"`value`", "`value` * `product`", "`value` / `product`"}},
    {"value",
     {"1", "0.375", "12.5", "100000000000000000000", "@`name`", "$`name`", "`text`", "(`sum`)", "-`value`",
      "null", "true", "false", "`word`", "count(`set`)", "f()", "focused-root(`argument`, `argument`)"}},
    {"argument", {".", "..", "`set`", "`sum`", "(`sum`)"}},
    {"name", {"a", "done", "and", "text", "x-1", "été", "_:b"}},
    {"text", {R"("")", R"("x")", R"("two words")", R"("q\"\\/\n\u0001")", R"("日本😀")", R"("/(")"}},
    {"word", {"foo", "2024-01-02", "task", "1e5", "nulls"}},
};

TEST(RandomTexts, PrintAsTextThatParsesToTheSameTree) {
  int parsed = 0;
  for (unsigned seed = 0; seed < 6000 && !HasFailure(); ++seed) {
    std::mt19937 random(seed);
    parsed += parsesSoundly(tests::randomText(forms, "expression", random));
  }
  EXPECT_GT(parsed, 2000);
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
      parsesSoundly(damaged);
    }
    parsesSoundly(text.substr(0, at));
    parsesSoundly(text.substr(at));
  }
}

}  // namespace
}  // namespace vell::outline_path
