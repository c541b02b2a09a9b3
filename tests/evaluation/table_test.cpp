// What paths select from one small outline; XPath is the measure of axes, slices and sets in
// reference_test.cpp.
#include <gtest/gtest.h>

#include "tests/evaluation/support.h"

namespace vell::evaluation {
namespace {

const Selection kRows[] = {
    // Axes
    {"/", "ROOT"},
    {"/*", "A F j"},
    {"//*", "A b c d e F G h Éclair j"},
    {"//task", "b d h"},
    {"/*/..", ""},
    {"//h/ancestor-or-self::heading", "F G"},
    {"//note/ancestor-or-self::*[0]", "c"},
    {"//task/self::row @done", "b h"},
    // Slices count along the axis, the nearest row first
    {"//task[-4]", ""},
    {"//task[2:1]", ""},
    // Predicates
    {"//* @done", "b h"},
    {"//* @id and @type and @text", "A b c d e F G h Éclair j"},
    {"//task not @done", "d"},
    {"//* @done or @due", "b d h"},
    {"//* (@done or @due) and @n = 3", "b"},
    {"//* \"ÉCLA\"", "Éclair"},
    {"//* \"g\"", "G"},
    {"//* @done = true", "b"},
    {"//* @done = \"true\"", "b"},
    {"//task @done != true", "d h"},
    {"//* @missing = null", "A b c d e F G h Éclair j"},
    {"//* @done != null", "b h"},
    {"//* @n < 12", "b"},
    {"//* @n < \"2\"", "c"},
    {"//* @n <[n] \"20\"", "b c"},
    {"//* @n != 3 and @n", "c h"},
    {"//* @n * 2 + 6 = @n + 9 and @n", "b"},
    {"//* -@n = -3", "b"},
    {"//* @n / 0 > 1", "b c"},
    {"//* @who = Ana", "d"},
    {"//* @who =[i] ANA", "d F"},
    {"//* @who =[s] ana", "F"},
    {"//* @who =[il] eva", "Éclair"},
    {"//* \"E\u0301CLAIR\" or @who =[i] \"ANA\"", "d F Éclair"},
    {"//* @who =[i] \"E\u0301VA\"", "Éclair"},
    {"//* @who beginswith[i] \"é\"", "Éclair"},
    {"//* @who endswith \"na\"", "d F"},
    {"//* @who contains \"n\"", "d F"},
    {"//* @who matches \"^[A-Z]n\"", "d"},
    {"//* @n matches \"^\\\\d{1,2}$\"", "b c"},
    {"//* @who matches \"^[É\\\\d-].a$\"", "Éclair"},
    {"//* @text matches[i] \"^[\\\\w]{4}IR$\"", "Éclair"},
    {"//* @due <[d] \"2024-01-03\"", "d"},
    {"//* @due >[d] \"2024-01-02T10:30:00+01:00\"", "d"},
    {"//* @due =[d] \"no date\"", ""},
    {"//* @type = task", "b d h"},
    {"//* @text = c", "c"},
    // Functions
    {"//* count(child::*) > 1", "A F"},
    {"//* count(//*) = 10 and @n = 3", "b"},
    {"//* count(.//task) = 1 and @who", "d F"},
    {"//* boolean(child::hr) = true", "A"},
    {"//* count(descendant::*) = 3", "F"},
    {"//* count(child::* not @due) <= 2 and count(child::*) >[n] 1.5", "A F"},
    {"//* count(parent::heading) = 1 and \"e\"", "e"},
    {"//* count(..) = 1 and count(/) = 1 and count(.\"h\") = 1", "h"},
    {"//* count(child::*[-1]) = 1 and count(following::*[1:]) = 4", "A"},
    {"/* position() = 2", "F"},
    {"/* position() = last()", "j"},
    {"/*/* position() = 1", "b G"},
    {"//* level() = 3", "c h"},
    {"//* leaf() = true and @n", "c h"},
    {"//* parent() = true", "A b F G"},
    {"//* root() = true", "A F j"},
    {"//* first-child() = true and last-child() = true", "c h"},
    {"//* only-child() = true", "c h"},
    {"//* nth-child(2) = true", "d F Éclair"},
    {"//* nth-child() = 3", "e j"},
    {"//task nth-of-type() = 2", "d"},
    {"//heading last-of-type() = true", "F G"},
    {"//* only-of-type() = true", "c e G h Éclair j"},
    {"//* round(@n / 2) = 2", "b"},
    {"//* floor(@n / 2) = 1", "b"},
    {"//* ceil(@n / 5) = 3", "c"},
    {"//* start-of-matches(\"air\") = 3", "Éclair"},
    {"//* end-of-matches(\"é\") = 1", "Éclair"},
    // Sets
    {"//* except //task except //heading", "A c e F G Éclair j"},
    {"(//* except //task) except //heading", "c e Éclair j"},
    {"//task union //task", "b d h"},
    // What cannot be evaluated
    {"1 + 2", "error: it gives a number, not rows (predicates compare values: //* count(child::*) > 0)"},
    {"count(//*)", "error: it gives a number, not rows (predicates compare values: //* count(child::*) > 0)"},
    {"\"x\"", "error: it gives text, not rows (predicates compare values: //* count(child::*) > 0)"},
    {"//* $v = 1", "error: there is no variable $v here"},
    {"//* nope() = 1", "error: there is no function nope() here"},
    {"//* expanded() = true", "error: there is no function expanded() here"},
    {"//* round(//*) = 1", "error: rows stand where a value is needed; only count() and boolean() take rows"},
    {"//* round() = 1", "error: round() takes one argument, not 0"},
    {"//* leaf(1) = 1", "error: leaf() takes no argument, not 1"},
    {"//* count(1) = 1", "error: count() takes one path, as in count(child::*)"},
    {"//* @who matches \"(\"", "error: \"(\" is no valid pattern: missing closing parenthesis"},
    {"//* @who matches \"(.?){90}[xy]\"", "error: \"(.?){90}[xy]\" takes too long to be searched for"},
};

TEST(Evaluation, SelectsRows) {
  const auto outline = outlineOf(kOutline);
  for (const Selection& row : kRows) EXPECT_EQ(selected(*outline, row.path), row.rows) << row.path;
}

TEST(Evaluation, SeesWhatHasChangedSince) {
  const auto outline = outlineOf(kOutline);
  EXPECT_EQ(selected(*outline, "//task"), "b d h");
  outline->setType(outline->mutableRow(*outline->root().lastChild()), RowType::task);
  EXPECT_EQ(selected(*outline, "//task"), "b d h j");
  outline->remove(outline->mutableRow(*outline->root().firstChild()));
  EXPECT_EQ(selected(*outline, "//task"), "h j");
}

TEST(Evaluation, KnowsRunsAsPartsOfRows) {
  Outline outline;
  const auto add = [&](const std::vector<evaluation::Run>& runs) {
    outline.insert(*outline.create(RowType::body, Text(runs), 0), outline.root());
  };
  add({{"plain ", {}}, {"bold", {{"strong", ""}}}});
  add({{"bold", {}}});
  add({{"a", {{"em", ""}}}, {"b", {}}, {"c", {{"em", ""}}}});
  EXPECT_EQ(selected(outline, "//*/run::run @strong"), "plain bold");
  EXPECT_EQ(selected(outline, "//*/run::* \"bold\""), "plain bold bold");
  EXPECT_EQ(selected(outline, "//* count(run::run @em) = 2"), "abc");
  EXPECT_EQ(selected(outline, "//* count(run::*) = 1"), "bold");
  EXPECT_EQ(selected(outline, "//*/run::*[2]"), "abc");
  EXPECT_EQ(selected(outline, "//*/run::task union //run"), "");
  EXPECT_EQ(selected(outline, "//*/run::* @em/following-sibling::* union //*/run::*[2]/."), "abc");
  EXPECT_EQ(selected(outline, "//*/run::*/run::* union //* count(run::*/run::*) > 0"), "");
  EXPECT_EQ(selected(outline, "//*/run::*/./run::* @em"), "abc");
  EXPECT_EQ(selected(outline, "//*/run::* @em and count(run::* union run::*) + count(run::*) = 0"), "abc");
  EXPECT_EQ(selected(outline, "//*/run::* @em and count(./run::*) = 3"), "abc");
}

}  // namespace
}  // namespace vell::evaluation
