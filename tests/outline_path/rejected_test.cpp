// What does not parse: where the error is, in which words, and which habit the hint recognises.
#include <gtest/gtest.h>

#include "outline_path/parse.h"
#include "traced.h"

namespace vell::outline_path {
namespace {

struct Rejected {
  const char* text;
  /// The error's first line, without "At column " and the full stop, in the words of kShort.
  const char* error;
  const char* hint = "";
};

/// What errors often say, by the names that the table has for it.
const std::pair<const char*, const char*> kShort[] = {
    {"LEFT_OVER", "expected input to be consumed, found"},
    {"PREDICATE", R"(a predicate (@name, "text", @name = "value"))"},
    {"SETS", R"("union", "except" or "intersect")"},
    {"RELATION", "a relation (=, <, contains)"},
    {"NEXT_STEP", R"("/" and a step)"},
    {"STEP", "a step (*, task, @name)"},
    {"SLICE", "a slice ([0], [1:5])"},
    {"BOUND", R"(an integer or ":")"},
    {"SIGN", "an arithmetic sign"},
    {"END", "the end of the input"},
};

constexpr const char* kQuotes = "strings stand in double quotes: write \"text\", not 'text'.";
constexpr const char* kBrackets =
    "predicates are bare, brackets hold slices: write //task @done, not //task[@done].";
constexpr const char* kArithmetic = "arithmetic takes values, not paths: write count(//*) - 1.";
constexpr const char* kComparedFunctions =
    "functions give values, so compare them: write leaf() = true, count(child::*) > 0.";
constexpr const char* kCountFrom0 = "slices count from 0: [0] takes the first row, [-1] the last.";
constexpr const char* kRange = "a slice from one row to another is written [start:end]: [1:5].";
constexpr const char* kPathBegins =
    R"(a path begins with an axis or "/": write //a to search all rows, ./a to search from here.)";

const Rejected kRejected[] = {
    // Not even a step
    {"", "1: unexpected end of input, expected a path or a value"},
    {"///", "4: unexpected end of input, expected STEP"},
    {"//task/", "8: unexpected end of input, expected STEP"},
    {"/[0]", R"(2: LEFT_OVER "[", expected STEP or END)"},
    {"/ task", R"(3: LEFT_OVER "task", expected SETS or END)", "no blank stands within a step: write /task."},
    {"//-a", R"(3: LEFT_OVER "-a", expected a type test or a predicate, NEXT_STEP, SLICE, or END)"},
    // Words
    {"a", R"(1: "a" alone is not a path)", kPathBegins},
    {" ((a ))", R"(4: "a" alone is not a path)", kPathBegins},
    {".5", R"(1: ".5" alone is not a path)",
     R"(a path begins with an axis or "/": write //.5 to search all rows, ./.5 to search from here.)"},
    {"a/b", R"(3: unexpected "b", expected something to divide by)", kPathBegins},
    {"//task foo", R"(8: LEFT_OVER "foo", expected PREDICATE, SETS, or END)",
     R"(text to search for stands in double quotes: write "foo".)"},
    {"//taks @done", R"(8: LEFT_OVER "@", expected SETS or END)",
     R"("taks" is no type test; did you mean "task"?)"},
    {"anccestor::x", R"(1: "anccestor::x" alone is not a path)",
     R"("anccestor::" is no axis; did you mean "ancestor::"?)"},
    {"1/word", R"(3: unexpected "word", expected something to divide by)"},
    {"@a = 1", R"(4: LEFT_OVER "=", expected SIGN or END)",
     R"(a comparison is a predicate of a step: write //* @name = "value".)"},
    // Predicates
    {"//task[@done]", R"(8: failed to process "Int", found "@", expected BOUND)", kBrackets},
    {"//task @", "9: unexpected end of input, expected an attribute name"},
    {"//task @done == true", R"(15: unexpected "=", expected a value)",
     R"(a single "=" compares: write @name = "value".)"},
    {"//task @name = 'x'", R"(16: unexpected "'", expected a value)", kQuotes},
    {"//* @name =[x] 1", R"(13: unexpected "x", expected a modifier (s, i, n, d))"},
    {"//* @name =[ix] 1", R"(14: unexpected "x", expected "l" or "]")"},
    {"//* count(//*)", "15: unexpected end of input, expected RELATION", kComparedFunctions},
    {"//* contains20 x", R"(5: LEFT_OVER "contains20", expected PREDICATE, SETS, or END)",
     R"("contains20" is no keyword; did you mean "contains"?)"},
    // Blanks around keywords
    {"//heading union//task", R"(16: unexpected "/", expected a blank)",
     R"("union" needs a blank on both sides.)"},
    {"//* not(@a)", R"(8: unexpected "(", expected a blank)", R"("not" needs a blank behind it.)"},
    {"//* (@a)and(@b)", R"(9: LEFT_OVER "and", expected RELATION, NEXT_STEP, SLICE, or END)",
     R"("and" needs a blank on both sides.)"},
    {"//* @a && @b", R"(8: LEFT_OVER "&", expected RELATION, "and" or "or", SETS, or END)",
     R"(write "and" with blanks around it.)"},
    // Strings and slices
    {R"(//* "open)", "10: unexpected end of input, expected a closing double quote"},
    {R"(//* "\q")", R"(7: unexpected "q", expected an escape (one of " \ / b f n r t u))"},
    {R"(//* "\ud83d")", R"(12: unexpected """, expected the second half of a surrogate pair)"},
    {R"(//* "\ude00")", R"(8: unexpected "de00", expected the first half of the surrogate pair before it)"},
    {"//*[9223372036854775808]",
     R"(5: failed to process "Int", found "9223372036854775808", expected BOUND)"},
    {"//*[+1]", R"(5: failed to process "Int", found "+", expected BOUND)", kBrackets},
    {"//*[1:2:3]", R"(8: unexpected ":3", expected "]")"},
    // Brackets
    {"(//a", R"x(5: unexpected end of input, expected ")", NEXT_STEP, or SLICE)x"},
    {"f(1 2)", R"x(5: unexpected "2", expected "," or ")" or SIGN)x"},
    {"not(//a)", R"(1: unexpected "not", expected a path or a value)", R"("not" needs a blank behind it.)"},
    // Slips and habits from other languages
    {".codeblock)", R"x(11: LEFT_OVER ")", expected NEXT_STEP, SLICE, SIGN, or END)x"},
    {"child::hr)", R"x(10: LEFT_OVER ")", expected NEXT_STEP, SLICE, SIGN, or END)x"},
    {"a)", R"x(2: LEFT_OVER ")", expected SIGN or END)x"},
    {"//* count(//task > 0", R"x(21: unexpected end of input, expected ")")x"},
    {"//* count(//task", R"x(17: unexpected end of input, expected "," or ")", NEXT_STEP, or SLICE)x"},
    {"//* count(//task @done and", "27: unexpected end of input, expected a blank",
     R"("and" stands between two predicates.)"},
    {"//* @done AND @x", R"(11: LEFT_OVER "AND", expected RELATION, "and" or "or", SETS, or END)",
     R"(keywords are written in lower case: write "and".)"},
    {"//* NOT @x", R"(5: LEFT_OVER "NOT", expected PREDICATE, SETS, or END)",
     R"(keywords are written in lower case: write "not".)"},
    {R"(//task @a Contains "x")",
     R"(11: LEFT_OVER "Contains", expected RELATION, "and" or "or", SETS, or END)",
     R"(keywords are written in lower case: write "contains".)"},
    {R"(//task @a startswith "x")",
     R"(11: LEFT_OVER "startswith", expected RELATION, "and" or "or", SETS, or END)",
     R"("startswith" is no relation: write "beginswith".)"},
    {R"(//task @a starts-with "x")",
     R"(11: LEFT_OVER "starts-with", expected RELATION, "and" or "or", SETS, or END)",
     R"("starts-with" is no relation: write "beginswith".)"},
    {R"(//task @a like "x")", R"(11: LEFT_OVER "like", expected RELATION, "and" or "or", SETS, or END)",
     R"("like" is no relation: write "contains" or "matches".)"},
    {"//task @a in (1, 2)", R"(11: LEFT_OVER "in", expected RELATION, "and" or "or", SETS, or END)",
     R"("in" is no relation: write @name = 1 or @name = 2.)"},
    {"//task @a is true", R"(11: LEFT_OVER "is", expected RELATION, "and" or "or", SETS, or END)",
     R"("is" is no relation: write @name = true.)"},
    {"//task unoin //heading", R"(8: LEFT_OVER "unoin", expected PREDICATE, SETS, or END)",
     R"("unoin" is no keyword; did you mean "union"?)"},
    {"//task @a UNION //heading", R"(11: LEFT_OVER "UNION", expected RELATION, "and" or "or", SETS, or END)",
     R"(keywords are written in lower case: write "union".)"},
    {"// task", R"(4: LEFT_OVER "task", expected SETS or END)",
     "no blank stands within a step: write //task."},
    {"//* - 1", R"(5: LEFT_OVER "-", expected PREDICATE, SETS, or END)", kArithmetic},
    {"//*-1", R"(4: LEFT_OVER "-1", expected NEXT_STEP, SLICE, or END)", kArithmetic},
    {"//* @a - 1", "11: unexpected end of input, expected RELATION",
     "a predicate compares values: write //* @name - 1 > 0."},
    {"//task @done and", "17: unexpected end of input, expected a blank",
     R"("and" stands between two predicates.)"},
    {"//heading union", "16: unexpected end of input, expected a blank",
     R"("union" stands between two paths.)"},
    {"union //heading", R"(1: unexpected "union", expected a path or a value)",
     R"("union" stands between two paths.)"},
    {"//heading or //task", R"(11: LEFT_OVER "or", expected PREDICATE, SETS, or END)",
     R"("or" joins predicates: write "union" between paths.)"},
    {"//heading and //task", R"(11: LEFT_OVER "and", expected PREDICATE, SETS, or END)",
     R"("and" joins predicates: write "intersect" between paths.)"},
    {"//task > //note", R"(8: LEFT_OVER ">", expected PREDICATE, SETS, or END)",
     R"(">" compares values, not paths: write //* @name = "value".)"},
    {R"(//* contains(@text, "x"))", R"(5: LEFT_OVER "contains", expected PREDICATE, SETS, or END)",
     R"("contains" is a relation, no function: write @name contains "value".)"},
    {"//* 1 < @n < 5", R"(12: LEFT_OVER "<", expected "and" or "or", SETS, SIGN, or END)",
     "comparisons do not chain: write 1 < @name and @name < 5."},
    {"//task@done", R"(7: LEFT_OVER "@", expected NEXT_STEP, SLICE, or END)",
     "a predicate needs a blank before it: write //task @done."},
    {"//task @a @b", R"(11: LEFT_OVER "@", expected RELATION, "and" or "or", SETS, or END)",
     R"(write "and" or "or" between predicates.)"},
    {R"(//task "a" "b")", R"(12: LEFT_OVER """, expected RELATION, "and" or "or", SETS, or END)",
     R"(write "and" or "or" between predicates.)"},
    {"//task[0] @done", R"(11: LEFT_OVER "@", expected SETS or END)",
     "a slice stands behind the predicate: write //task @done[0]."},
    {"//* leaf()", "11: unexpected end of input, expected RELATION", kComparedFunctions},
    {"//* count(child::*)", "20: unexpected end of input, expected RELATION", kComparedFunctions},
    {"//task[last()]", R"(8: failed to process "Int", found "last", expected BOUND)", kCountFrom0},
    {"//task[first]", R"(8: failed to process "Int", found "first", expected BOUND)", kCountFrom0},
    {"//task[position()=1]", R"(8: failed to process "Int", found "position", expected BOUND)", kCountFrom0},
    {"//*[1..5]", R"(6: unexpected "..5", expected ":" or "]")", kRange},
    {"//*[1-5]", R"(6: unexpected "-5", expected ":" or "]")", kRange},
    {"//*[1,5]", R"(6: unexpected ",", expected ":" or "]")", kRange},
    {"task.done", R"(1: "task.done" alone is not a path)",
     R"(an attribute stands behind "@": write //task @done.)"},
    {"task[@done]", R"(5: LEFT_OVER "[", expected SIGN or END)",
     R"(a path begins with an axis or "/": write //task to search all rows, ./task to search from here.)"},
    {"*[@done]", R"(1: unexpected "*", expected a path or a value)",
     R"(a path begins with an axis or "/": write //* for all rows.)"},
    {"#id", R"(1: unexpected "#", expected a path or a value)",
     R"(a row's id is an attribute: write //* @id = "id".)"},
    {R"(//* @a = [i] "x")", R"(10: unexpected "[", expected a value)",
     R"(a modifier stands right behind its relation: write @name =[i] "value".)"},
    {"//* @a <> 1", R"(9: unexpected ">", expected a value)",
     R"("!=" says that values differ: write @name != "value".)"},
    {R"(//* @a =~ "x")", R"(9: unexpected "~", expected a value)",
     R"("matches" compares with a pattern: write @name matches "pattern".)"},
    {"//* @a => 1", R"(9: unexpected ">", expected a value)", R"(write ">=" for greater or equal.)"},
    {"//* @a = “x”", R"(10: unexpected "“", expected a value)",
     R"(strings stand in plain double quotes: write "text".)"},
    {"//* @a = ‘x’", R"(10: unexpected "‘", expected a value)",
     R"(strings stand in plain double quotes: write "text".)"},
    {"//task\u200B@done", "7: LEFT_OVER \"\u200B\", expected NEXT_STEP, SLICE, or END",
     "the character U+200B is no blank here: write a plain one, or none."},
    {"//task @a = 1\u00A0and @b", "14: LEFT_OVER \"\u00A0\", expected NEXT_STEP, SLICE, SIGN, or END",
     "the character U+00A0 is no blank here: write a plain one, or none."},
    {"\uFEFF//task[", R"(3: unexpected "/", expected something to divide by)",
     "the character U+FEFF is no blank here: write a plain one, or none."},
    {"//\u200Dtask @done and \"\u00A0", R"(9: LEFT_OVER "@", expected SETS or END)",
     "the character U+200D is no blank here: write a plain one, or none."},
    {"//* \"a\\\"\u00A0\" and", "15: unexpected end of input, expected a blank",
     R"("and" stands between two predicates.)"},
    {"//* @a\u2069 \x7F= 1", "7: LEFT_OVER \"\u2069\", expected RELATION, NEXT_STEP, SLICE, or END",
     "the character U+2069 is no blank here: write a plain one, or none."},
    {"//child::*", R"(3: LEFT_OVER "child::", expected a type test or a predicate, NEXT_STEP, SLICE, or END)",
     R"("//" is an axis itself: write /child::* or //*.)"},
    {"sibling::*", "11: unexpected end of input, expected a value",
     R"("sibling::" is no axis; did you mean "following-sibling::"?)"},
    {"children::*", "12: unexpected end of input, expected a value",
     R"("children::" is no axis; did you mean "child::"?)"},
    {"/sibling::task", R"(2: LEFT_OVER "sibling::task", expected STEP or END)",
     R"("sibling::" is no axis; did you mean "following-sibling::"?)"},
    // Lines and widths
    {"//a\nunion//b", R"(line 2, column 6: unexpected "/", expected a blank)",
     R"("union" needs a blank on both sides.)"},
};

std::string errorLine(const std::string& rendered) {
  std::string line = rendered.substr(0, rendered.find('\n'));
  line = line.substr(std::string("At ").size());
  if (line.substr(0, 7) == "column ") line = line.substr(7);
  line.pop_back();
  for (const auto& [name, text] : kShort) {
    if (const std::size_t at = line.find(text); at != std::string::npos)
      line.replace(at, std::string_view(text).size(), name);
  }
  return line;
}

std::string hintLine(const std::string& rendered) {
  const std::size_t hint = rendered.find("\nHint: ");
  return hint == std::string::npos ? "" : rendered.substr(hint + 7, rendered.size() - hint - 8);
}

TEST(Rejected, SaysWhatIsWrongAndWhere) {
  for (const Rejected& row : kRejected) {
    const ParseResult result = parseBothWays(row.text);
    ASSERT_TRUE(result.error) << row.text;
    const std::string rendered = render(*result.error, row.text);
    EXPECT_EQ(errorLine(rendered), row.error) << row.text;
    EXPECT_EQ(hintLine(rendered), row.hint) << row.text;
  }
}

TEST(Rejected, PointsAtDisplayColumns) {
  const std::string wide = "//* \"日本\" 'x'";
  EXPECT_NE(render(*parse(wide).error, wide).find("\n  //* \"日本\" 'x'\n             ^\n"),
            std::string::npos);
  const std::string tabbed = "//*\t]";
  EXPECT_NE(render(*parse(tabbed).error, tabbed).find("\n  //* ]\n      ^\n"), std::string::npos);
}

TEST(Rejected, ShowsTheNeighbourhoodInALongLine) {
  const std::string text = std::string(500, '/') + "]" + std::string(500, 'x');
  const std::string rendered = render(Diagnostic{Diagnostic::Kind::unexpected, 500, {}}, text);
  const std::string picture =
      "\n  …" + std::string(35, '/') + "]" + std::string(34, 'x') + "…\n" + std::string(38, ' ') + "^\n";
  EXPECT_NE(rendered.find(picture), std::string::npos) << rendered;
}

TEST(Rejected, RefusesInvalidUtf8AtItsOffset) {
  for (const char* text : {"//* \"ab\xff\"", "//* \"ab\xc3(\"", "//* \"ab\xed\xa0\x80\"",
                           "//* \"ab\xf5\x80\x80\x80\"", "//* \"ab\xe2\x82"}) {
    const ParseResult result = parse(text);
    ASSERT_TRUE(result.error);
    EXPECT_EQ(result.error->kind, Diagnostic::Kind::invalidUtf8);
    EXPECT_EQ(result.error->index, 7U);
    EXPECT_NE(render(*result.error, text).find("invalid UTF-8 at byte 7"), std::string::npos);
  }
}

}  // namespace
}  // namespace vell::outline_path
