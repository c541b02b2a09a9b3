// Whole answers of the path check, good and bad, as they stand in descriptions.txt, and the cookbook.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "outline_path/parse.h"
#include "outline_path/path_check.h"
#include "outline_path/with_parse.h"

namespace vell::outline_path {
namespace {

std::string readAll(const char* path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

TEST(Descriptions, ReadAsWritten) {
  const std::string wanted = readAll(VELL_DESCRIPTIONS);
  std::string written;
  std::size_t rows = 0;
  std::istringstream lines(wanted);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("=== ", 0) != 0) continue;
    written += line + "\n" + checkOutlinePath(line.substr(4));
    ++rows;
  }
  EXPECT_EQ(written, wanted);
  EXPECT_EQ(rows, 40U);
}

TEST(PathCheck, TrimsAndAnswersWithTheCookbook) {
  EXPECT_EQ(checkOutlinePath(" \n//task\t "), checkOutlinePath("//task"));
  const std::string cookbook = checkOutlinePath("");
  EXPECT_EQ(checkOutlinePath(" \r\n\t"), cookbook);
  EXPECT_EQ(cookbook.substr(0, 44), "Outline Path Cookbook\n=====================\n");
  EXPECT_EQ(cookbook.back(), '.');
}

/// The expressions that the lines of the cookbook begin with, or give as examples.
std::vector<std::string> cookbookExpressions() {
  std::vector<std::string> found;
  std::istringstream lines(checkOutlinePath(""));
  const std::regex column(R"(^\s+([/.(a-z@].*?)(\s\s+[a-z(\d`—].*|\s+row @?.*)?$)");
  const std::regex example("Examples?: +(.*)$");
  for (std::string line; std::getline(lines, line);) {
    std::smatch match;
    if (std::regex_search(line, match, example)) {
      found.push_back(match[1].str().substr(0, match[1].str().find("   ")));
    } else if (line.rfind("  //", 0) == 0 || line.rfind("  /", 0) == 0 || line.rfind("    //", 0) == 0 ||
               line.rfind("  parent::", 0) == 0 || line.rfind("  ..", 0) == 0 ||
               line.rfind("  count", 0) == 0) {
      if (std::regex_match(line, match, column)) found.push_back(match[1]);
    }
  }
  return found;
}

TEST(Cookbook, TeachesWhatParses) {
  const auto expressions = cookbookExpressions();
  EXPECT_GE(expressions.size(), 35U);
  for (const std::string& text : expressions) {
    // Its notations: two blanks set a predicate off, and "//" stands for itself in the table of axes.
    const ParseResult result = parse(text, {.allowValueExpression = true});
    EXPECT_FALSE(result.error) << text << "\n" << (result.error ? render(*result.error, text) : "");
  }
}

}  // namespace
}  // namespace vell::outline_path
