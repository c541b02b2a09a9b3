#include <gtest/gtest.h>

#include "headless/editing/editor.h"
#include "headless/editing/editor_functions.h"
#include "tests/evaluation/support.h"

namespace vell::headless {
namespace {

TEST(EditorFunctions, AnswerForTheRowsOfAnOutline) {
  const auto outline = evaluation::outlineOf(evaluation::kOutline);
  Editor editor(*outline);
  const Row& heading = *outline->root().firstChild();
  editor.focus(heading);
  editor.setCollapsed(*heading.firstChild(), true);
  editor.select(*heading.firstChild(), *heading.firstChild());
  const EditorFunctions functions(*outline, editor);
  const evaluation::Selection rows[] = {
      {"//* focused-root() = true", "A"},
      {"//* focused-branch() = true", "A b c d e"},
      {"//* focused-level() = 2", "c"},
      {"//* focused-level() > 1000", "F G h Éclair j"},
      {"//* expanded() = true", "A F G"},
      {"//heading collapsed() = true or @n = 3", ""},
      {"//task collapsed() = true", "b d h"},
      {"//* filter-match() = true or filter-match-ancestor() = true", ""},
      {"//* selection() = \"caret\"", "b"},
      {"//* selection-ancestor() = true", "A"},
      {"//* selection-descendant() = true", "c"},
      {"//* drop-indicator() = \"on\"", ""},
  };
  for (const evaluation::Selection& row : rows)
    EXPECT_EQ(evaluation::selected(*outline, row.path, &functions), row.rows) << row.path;
  // From "d" to "F": what is below it, too, is below the selection.
  editor.select(*heading.firstChild()->next(), *heading.next());
  const EditorFunctions wider(*outline, editor);
  EXPECT_EQ(evaluation::selected(*outline, "//* selection() = \"block\"", &wider), "d e F");
  EXPECT_EQ(evaluation::selected(*outline, "//* selection-descendant() = true", &wider), "G h Éclair");
}

}  // namespace
}  // namespace vell::headless
