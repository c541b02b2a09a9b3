// What does not parse: where the error is, in which words, and which habit the hint recognises.
#include <gtest/gtest.h>

#include "outline_path/parse.h"
#include "traced.h"

namespace vell::outline_path {
namespace {

struct Rejected {
  const char* text;
  /// The error's first line, without "Error at column " and the full stop.
  const char* error;
  const char* hint = "";
};

constexpr const char* kQuotes = "strings stand in double quotes: write \"text\", not 'text'.";
constexpr const char* kBrackets =
    "predicates are bare, brackets hold slices: write //task @done, not //task[@done].";

const Rejected kRejected[] = {
    // Not even a step
    {"", "1: unexpected end of input, expected a path or a value"},
    {"///", "4: unexpected end of input, expected a step (*, task, @name)"},
    {"//task/", "8: unexpected end of input, expected a step (*, task, @name)"},
    {"/[0]",
     "2: expected input to be consumed, found \"[\", expected a step (*, task, @name) or the end of the "
     "input"},
    {"/ task",
     "3: expected input to be consumed, found \"task\", expected \"union\", \"except\" or \"intersect\" "
     "or the end of the input",
     "text to search for stands in double quotes: write \"task\"."},
    {"//-a",
     "3: expected input to be consumed, found \"-a\", expected a type test or a predicate, \"/\" and a step, "
     "a slice ([0], [1:5]), or the end of the input"},
    // Words
    {"a", "1: \"a\" alone is not a path",
     "a path begins with an axis or \"/\": write //a to search all rows, ./a to search from here."},
    {" ((a ))", "4: \"a\" alone is not a path",
     "a path begins with an axis or \"/\": write //a to search all rows, ./a to search from here."},
    {".5", "1: \".5\" alone is not a path",
     "a path begins with an axis or \"/\": write //.5 to search all rows, ./.5 to search from here."},
    {"a/b", "3: unexpected \"b\", expected something to divide by",
     "a path begins with an axis or \"/\": write //a to search all rows, ./a to search from here."},
    {"//task foo",
     "8: expected input to be consumed, found \"foo\", expected a predicate (@name, \"text\", @name = "
     "\"value\"), "
     "\"union\", \"except\" or \"intersect\", or the end of the input",
     "text to search for stands in double quotes: write \"foo\"."},
    {"//taks @done",
     "8: expected input to be consumed, found \"@\", expected \"union\", \"except\" or \"intersect\" or the "
     "end of the "
     "input",
     "\"taks\" is no type test; did you mean \"task\"?"},
    {"anccestor::x", "1: \"anccestor::x\" alone is not a path",
     "\"anccestor::\" is no axis; did you mean \"ancestor::\"?"},
    {"1/word", "3: unexpected \"word\", expected something to divide by"},
    {"@a = 1",
     "4: expected input to be consumed, found \"=\", expected an arithmetic sign or the end of the input",
     "a comparison is a predicate of a step: write //* @name = \"value\"."},
    // Predicates
    {"//task[@done]", "8: failed to process \"Int\", found \"@\", expected an integer or \":\"", kBrackets},
    {"//task @", "9: unexpected end of input, expected an attribute name"},
    {"//task @done == true", "15: unexpected \"=\", expected a value",
     "a single \"=\" compares: write @name = \"value\"."},
    {"//task @name = 'x'", "16: unexpected \"'\", expected a value", kQuotes},
    {"//* @name =[x] 1", "13: unexpected \"x\", expected a modifier (s, i, n, d)"},
    {"//* @name =[ix] 1", "14: unexpected \"x\", expected \"l\" or \"]\""},
    {"//* count(//*)", "15: unexpected end of input, expected a relation (=, <, contains)"},
    {"//* contains20 x",
     "5: expected input to be consumed, found \"contains20\", expected a predicate (@name, \"text\", @name = "
     "\"value\"), \"union\", \"except\" or \"intersect\", or the end of the input",
     "text to search for stands in double quotes: write \"contains20\"."},
    // Blanks around keywords
    {"//heading union//task", "16: unexpected \"/\", expected a blank",
     "\"union\" needs a blank on both sides."},
    {"//* not(@a)", "8: unexpected \"(\", expected a blank", "\"not\" needs a blank behind it."},
    {"//* (@a)and(@b)",
     "9: expected input to be consumed, found \"and\", expected a relation (=, <, contains), \"/\" and a "
     "step, a slice "
     "([0], [1:5]), or the end of the input",
     "\"and\" needs a blank on both sides."},
    {"//* @a && @b",
     "8: expected input to be consumed, found \"&\", expected a relation (=, <, contains), \"and\" or "
     "\"or\", "
     "\"union\", \"except\" or \"intersect\", or the end of the input",
     "write \"and\" with blanks around it."},
    // Strings and slices
    {"//* \"open", "10: unexpected end of input, expected a closing double quote"},
    {"//* \"\\q\"", "7: unexpected \"q\", expected an escape (one of \" \\ / b f n r t u)"},
    {"//* \"\\ud83d\"", "12: unexpected \"\"\", expected the second half of a surrogate pair"},
    {"//* \"\\ude00\"", "8: unexpected \"de00\", expected the first half of the surrogate pair before it"},
    {"//*[9223372036854775808]",
     "5: failed to process \"Int\", found \"9223372036854775808\", expected an integer or \":\""},
    {"//*[+1]", "5: failed to process \"Int\", found \"+\", expected an integer or \":\"", kBrackets},
    {"//*[1:2:3]", "8: unexpected \":3\", expected \"]\""},
    // Brackets
    {"(//a", "5: unexpected end of input, expected \")\", \"/\" and a step, or a slice ([0], [1:5])"},
    {"f(1 2)", "5: unexpected \"2\", expected \",\" or \")\" or an arithmetic sign"},
    {"not(//a)", "1: unexpected \"not\", expected a path or a value", "\"not\" needs a blank behind it."},
    // Lines and widths
    {"//a\nunion//b", "line 2, column 6: unexpected \"/\", expected a blank",
     "\"union\" needs a blank on both sides."},
};

std::string errorLine(const std::string& rendered) {
  std::string line = rendered.substr(0, rendered.find('\n'));
  line = line.substr(std::string("Error at ").size());
  if (line.substr(0, 7) == "column ") line = line.substr(7);
  line.pop_back();
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
