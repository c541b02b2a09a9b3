// What does not parse: where the error is, in which words, and which habit the hint recognises.
#include <gtest/gtest.h>

#include "outline_path/parse.h"
#include "traced.h"

namespace vell::outline_path {
namespace {

struct Rejected {
  const char* text;
  /// The error's first line, without "At column " and the full stop.
  const char* error;
  const char* hint = "";
};

constexpr const char* kQuotes = "strings stand in double quotes: write \"text\", not 'text'.";
constexpr const char* kBrackets =
    "predicates are bare, brackets hold slices: write //task @done, not //task[@done].";
constexpr const char* kArithmetic = "arithmetic takes values, not paths: write count(//*) - 1.";

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
     "no blank stands within a step: write /task."},
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
    {"//* count(//*)", "15: unexpected end of input, expected a relation (=, <, contains)",
     "functions give values, so compare them: write leaf() = true, count(child::*) > 0."},
    {"//* contains20 x",
     "5: expected input to be consumed, found \"contains20\", expected a predicate (@name, \"text\", @name = "
     "\"value\"), \"union\", \"except\" or \"intersect\", or the end of the input",
     "\"contains20\" is no keyword; did you mean \"contains\"?"},
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
    // Slips and habits from other languages
    {".codeblock)",
     "11: expected input to be consumed, found \")\", expected \"/\" and a step, a slice ([0], [1:5]), an "
     "arithmetic sign, or the end of the input"},
    {"child::hr)",
     "10: expected input to be consumed, found \")\", expected \"/\" and a step, a slice ([0], [1:5]), an "
     "arithmetic sign, or the end of the input"},
    {"a)",
     "2: expected input to be consumed, found \")\", expected an arithmetic sign or the end of the input"},
    {"//* count(//task > 0", "21: unexpected end of input, expected \")\""},
    {"//* count(//task",
     "17: unexpected end of input, expected \",\" or \")\", \"/\" and a step, or a slice ([0], [1:5])"},
    {"//* count(//task @done and", "27: unexpected end of input, expected a blank",
     "\"and\" stands between two predicates."},
    {"//* @done AND @x",
     "11: expected input to be consumed, found \"AND\", expected a relation (=, <, contains), \"and\" or "
     "\"or\", \"union\", \"except\" or \"intersect\", or the end of the input",
     "keywords are written in lower case: write \"and\"."},
    {"//* NOT @x",
     "5: expected input to be consumed, found \"NOT\", expected a predicate (@name, \"text\", @name = "
     "\"value\"), \"union\", \"except\" or \"intersect\", or the end of the input",
     "keywords are written in lower case: write \"not\"."},
    {"//task @a Contains \"x\"",
     "11: expected input to be consumed, found \"Contains\", expected a relation (=, <, contains), \"and\" "
     "or \"or\", \"union\", \"except\" or \"intersect\", or the end of the input",
     "keywords are written in lower case: write \"contains\"."},
    {"//task @a startswith \"x\"",
     "11: expected input to be consumed, found \"startswith\", expected a relation (=, <, contains), \"and\" "
     "or \"or\", \"union\", \"except\" or \"intersect\", or the end of the input",
     "\"startswith\" is no relation: write \"beginswith\"."},
    {"//task @a starts-with \"x\"",
     "11: expected input to be consumed, found \"starts-with\", expected a relation (=, <, contains), "
     "\"and\" or \"or\", \"union\", \"except\" or \"intersect\", or the end of the input",
     "\"starts-with\" is no relation: write \"beginswith\"."},
    {"//task @a like \"x\"",
     "11: expected input to be consumed, found \"like\", expected a relation (=, <, contains), \"and\" or "
     "\"or\", \"union\", \"except\" or \"intersect\", or the end of the input",
     "\"like\" is no relation: write \"contains\" or \"matches\"."},
    {"//task @a in (1, 2)",
     "11: expected input to be consumed, found \"in\", expected a relation (=, <, contains), \"and\" or "
     "\"or\", \"union\", \"except\" or \"intersect\", or the end of the input",
     "\"in\" is no relation: write @name = 1 or @name = 2."},
    {"//task @a is true",
     "11: expected input to be consumed, found \"is\", expected a relation (=, <, contains), \"and\" or "
     "\"or\", \"union\", \"except\" or \"intersect\", or the end of the input",
     "\"is\" is no relation: write @name = true."},
    {"//task unoin //heading",
     "8: expected input to be consumed, found \"unoin\", expected a predicate (@name, \"text\", @name = "
     "\"value\"), \"union\", \"except\" or \"intersect\", or the end of the input",
     "\"unoin\" is no keyword; did you mean \"union\"?"},
    {"//task @a UNION //heading",
     "11: expected input to be consumed, found \"UNION\", expected a relation (=, <, contains), \"and\" or "
     "\"or\", \"union\", \"except\" or \"intersect\", or the end of the input",
     "keywords are written in lower case: write \"union\"."},
    {"// task",
     "4: expected input to be consumed, found \"task\", expected \"union\", \"except\" or \"intersect\" or "
     "the end of the input",
     "no blank stands within a step: write //task."},
    {"//* - 1",
     "5: expected input to be consumed, found \"-\", expected a predicate (@name, \"text\", @name = "
     "\"value\"), \"union\", \"except\" or \"intersect\", or the end of the input",
     kArithmetic},
    {"//*-1",
     "4: expected input to be consumed, found \"-1\", expected \"/\" and a step, a slice ([0], [1:5]), or "
     "the "
     "end of the input",
     kArithmetic},
    {"//* @a - 1", "11: unexpected end of input, expected a relation (=, <, contains)",
     "a predicate compares values: write //* @name - 1 > 0."},
    {"//task @done and", "17: unexpected end of input, expected a blank",
     "\"and\" stands between two predicates."},
    {"//heading union", "16: unexpected end of input, expected a blank",
     "\"union\" stands between two paths."},
    {"union //heading", "1: unexpected \"union\", expected a path or a value",
     "\"union\" stands between two paths."},
    {"//heading or //task",
     "11: expected input to be consumed, found \"or\", expected a predicate (@name, \"text\", @name = "
     "\"value\"), \"union\", \"except\" or \"intersect\", or the end of the input",
     "\"or\" joins predicates: write \"union\" between paths."},
    {"//heading and //task",
     "11: expected input to be consumed, found \"and\", expected a predicate (@name, \"text\", @name = "
     "\"value\"), \"union\", \"except\" or \"intersect\", or the end of the input",
     "\"and\" joins predicates: write \"intersect\" between paths."},
    {"//task > //note",
     "8: expected input to be consumed, found \">\", expected a predicate (@name, \"text\", @name = "
     "\"value\"), \"union\", \"except\" or \"intersect\", or the end of the input",
     "\">\" compares values, not paths: write //* @name = \"value\"."},
    {"//* contains(@text, \"x\")",
     "5: expected input to be consumed, found \"contains\", expected a predicate (@name, \"text\", @name = "
     "\"value\"), \"union\", \"except\" or \"intersect\", or the end of the input",
     "\"contains\" is a relation, no function: write @name contains \"value\"."},
    {"//* 1 < @n < 5",
     "12: expected input to be consumed, found \"<\", expected \"and\" or \"or\", \"union\", \"except\" or "
     "\"intersect\", an arithmetic sign, or the end of the input",
     "comparisons do not chain: write 1 < @name and @name < 5."},
    {"//task@done",
     "7: expected input to be consumed, found \"@\", expected \"/\" and a step, a slice ([0], [1:5]), or the "
     "end of the input",
     "a predicate needs a blank before it: write //task @done."},
    {"//task @a @b",
     "11: expected input to be consumed, found \"@\", expected a relation (=, <, contains), \"and\" or "
     "\"or\", \"union\", \"except\" or \"intersect\", or the end of the input",
     "write \"and\" or \"or\" between predicates."},
    {"//task \"a\" \"b\"",
     "12: expected input to be consumed, found \"\"\", expected a relation (=, <, contains), \"and\" or "
     "\"or\", \"union\", \"except\" or \"intersect\", or the end of the input",
     "write \"and\" or \"or\" between predicates."},
    {"//task[0] @done",
     "11: expected input to be consumed, found \"@\", expected \"union\", \"except\" or \"intersect\" or the "
     "end of the input",
     "a slice stands behind the predicate: write //task @done[0]."},
    {"//* leaf()", "11: unexpected end of input, expected a relation (=, <, contains)",
     "functions give values, so compare them: write leaf() = true, count(child::*) > 0."},
    {"//* count(child::*)", "20: unexpected end of input, expected a relation (=, <, contains)",
     "functions give values, so compare them: write leaf() = true, count(child::*) > 0."},
    {"//task[last()]", "8: failed to process \"Int\", found \"last\", expected an integer or \":\"",
     "slices count from 0: [0] takes the first row, [-1] the last."},
    {"//task[first]", "8: failed to process \"Int\", found \"first\", expected an integer or \":\"",
     "slices count from 0: [0] takes the first row, [-1] the last."},
    {"//task[position()=1]", "8: failed to process \"Int\", found \"position\", expected an integer or \":\"",
     "slices count from 0: [0] takes the first row, [-1] the last."},
    {"//*[1..5]", "6: unexpected \"..5\", expected \":\" or \"]\"",
     "a slice from one row to another is written [start:end]: [1:5]."},
    {"//*[1-5]", "6: unexpected \"-5\", expected \":\" or \"]\"",
     "a slice from one row to another is written [start:end]: [1:5]."},
    {"//*[1,5]", "6: unexpected \",\", expected \":\" or \"]\"",
     "a slice from one row to another is written [start:end]: [1:5]."},
    {"task.done", "1: \"task.done\" alone is not a path",
     "an attribute stands behind \"@\": write //task @done."},
    {"task[@done]",
     "5: expected input to be consumed, found \"[\", expected an arithmetic sign or the end of the input",
     "a path begins with an axis or \"/\": write //task to search all rows, ./task to search from here."},
    {"*[@done]", "1: unexpected \"*\", expected a path or a value",
     "a path begins with an axis or \"/\": write //* for all rows."},
    {"#id", "1: unexpected \"#\", expected a path or a value",
     "a row's id is an attribute: write //* @id = \"id\"."},
    {"//* @a = [i] \"x\"", "10: unexpected \"[\", expected a value",
     "a modifier stands right behind its relation: write @name =[i] \"value\"."},
    {"//* @a <> 1", "9: unexpected \">\", expected a value",
     "\"!=\" says that values differ: write @name != \"value\"."},
    {"//* @a =~ \"x\"", "9: unexpected \"~\", expected a value",
     "\"matches\" compares with a pattern: write @name matches \"pattern\"."},
    {"//* @a => 1", "9: unexpected \">\", expected a value", "write \">=\" for greater or equal."},
    {"//* @a = “x”", "10: unexpected \"“\", expected a value",
     "strings stand in plain double quotes: write \"text\"."},
    {"//* @a = ‘x’", "10: unexpected \"‘\", expected a value",
     "strings stand in plain double quotes: write \"text\"."},
    {"//task\u200B@done",
     "7: expected input to be consumed, found \"\u200B\", expected \"/\" and a step, a slice ([0], [1:5]), "
     "or the end of the input",
     "the character U+200B is no blank here: write a plain one, or none."},
    {"//task @a = 1\u00A0and @b",
     "14: expected input to be consumed, found \"\u00A0\", expected \"/\" and a step, a slice ([0], [1:5]), "
     "an arithmetic sign, or the end of the input",
     "the character U+00A0 is no blank here: write a plain one, or none."},
    {"\uFEFF//task[", "3: unexpected \"/\", expected something to divide by",
     "the character U+FEFF is no blank here: write a plain one, or none."},
    {"//\u200Dtask @done and \"\u00A0",
     "9: expected input to be consumed, found \"@\", expected \"union\", \"except\" or \"intersect\" or the "
     "end of "
     "the input",
     "the character U+200D is no blank here: write a plain one, or none."},
    {"//* \"a\\\"\u00A0\" and", "15: unexpected end of input, expected a blank",
     "\"and\" stands between two predicates."},
    {"//* @a\u2069 \x7F= 1",
     "7: expected input to be consumed, found \"\u2069\", expected a relation (=, <, contains), \"/\" and a "
     "step, a "
     "slice ([0], [1:5]), or the end of the input",
     "the character U+2069 is no blank here: write a plain one, or none."},
    {"//child::*",
     "3: expected input to be consumed, found \"child::\", expected a type test or a predicate, \"/\" and a "
     "step, a slice ([0], [1:5]), or the end of the input",
     "\"//\" is an axis itself: write /child::* or //*."},
    {"sibling::*", "11: unexpected end of input, expected a value",
     "\"sibling::\" is no axis; did you mean \"following-sibling::\"?"},
    {"children::*", "12: unexpected end of input, expected a value",
     "\"children::\" is no axis; did you mean \"child::\"?"},
    {"/sibling::task",
     "2: expected input to be consumed, found \"sibling::task\", expected a step (*, task, @name) or the end "
     "of the input",
     "\"sibling::\" is no axis; did you mean \"following-sibling::\"?"},
    // Lines and widths
    {"//a\nunion//b", "line 2, column 6: unexpected \"/\", expected a blank",
     "\"union\" needs a blank on both sides."},
};

std::string errorLine(const std::string& rendered) {
  std::string line = rendered.substr(0, rendered.find('\n'));
  line = line.substr(std::string("At ").size());
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
