// What the tree knows about a path beforehand.
#include <gtest/gtest.h>

#include "traced.h"

namespace vell::outline_path {
namespace {

struct Facts {
  const char* path;
  /// "positions" where it requires them, "one" where all steps leave one row at most, the terms, the shape.
  const char* facts;
};

const Facts kFacts[] = {
    // Terms stand in the text of every row that is selected
    {"//* \"b\" and \"a\"", "'a' 'b' general"},
    {"//* \"a\" and (\"b\" or \"c\")", "'a' general"},
    {"//* \"a\" or \"a\" and @b", "'a' general"},
    {"//* not \"a\"", "general"},
    {"//a/b", "'a' 'b' general"},
    {"//* @text contains \"a\"", "'a' general"},
    {"//* @text beginswith[i] \"a\" and @text endswith[s] \"b\"", "'a' 'b' general"},
    {"//* @text = \"a\"", "'a' general"},
    {"//* @text =[il] \"a\"", "general"},
    {"//* @text =[n] \"1\"", "general"},
    {"//* @text != \"a\"", "general"},
    {"//* @text matches \"a\"", "general"},
    {"//* @text = 1", "general"},
    {"//* @text contains a", "general"},
    {"//* @name contains \"a\"", "general"},
    {"//* count(//* \"a\") > 0", "general"},
    // Positions
    {"//*[0]", "positions one oneRow"},
    {"//*[:1]", "positions general"},
    {"//* position() = 1/..", "positions general"},
    {"//* not (1 + -round(last()) > 2)", "positions general"},
    {"//* count(//*[0]) = 1", "general"},
    // Shapes
    {"/", "one oneRow"},
    {"..", "one oneRow"},
    {"../parent::task/*[-1]", "positions one oneRow"},
    {"./task", "general"},
    {"ancestor::*", "general"},
    {".", "one selfTypeTest"},
    {".task @a", "one selfContainsAttribute"},
    {".a", "one 'a' selfContainsText"},
    {".(\"a\")", "one 'a' selfPredicate"},
    {".@a = 1", "one selfPredicate"},
    {".position() = 1", "positions one selfPredicate"},
    {".[0]", "positions one oneRow"},
    {"./.", "one oneRow"},
};

std::string factsOf(const Path::Meta& meta) {
  const char* const shapes[] = {
      "selfTypeTest", "selfContainsAttribute", "selfContainsText", "selfPredicate", "oneRow", "general"};
  std::string facts = meta.requiresContextPositions ? "positions " : "";
  if (meta.allSingleElementSteps) facts += "one ";
  for (const MatchTerm& term : meta.matchingTerms) facts += "'" + term.text + "' ";
  return facts + shapes[static_cast<int>(meta.matchShape)];
}

TEST(Facts, AreWorkedOutAsPathsAreBuilt) {
  for (const Facts& row : kFacts) {
    const ParseResult parsed = parseBothWays(row.path, false);
    ASSERT_FALSE(parsed.error) << row.path;
    const Path& path = std::get<Path>(std::get<PathExpression>(*parsed.expression).node);
    EXPECT_EQ(factsOf(path.meta()), row.facts) << row.path;
  }
}

}  // namespace
}  // namespace vell::outline_path
