#include "headless/editing/editor.h"

#include <gmock/gmock.h>

namespace vell::headless {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// 1 root > 2 a (3 b (4 c), 5 d), 6 e
class EditorTest : public testing::Test {
 protected:
  EditorTest() {
    Row* a = add("a", outline.root());
    Row* b = add("b", *a);
    add("c", *b);
    add("d", *a);
    add("e", outline.root());
    editor.emplace(outline);
  }
  Row* add(const char* text, Row& parent) {
    Row* row = outline.create(RowType::body, Text(text), 0);
    outline.insert(*row, parent);
    return row;
  }
  const Row& row(SessionId id) { return *outline.find(id); }
  static std::vector<SessionId> ids(const std::vector<const Row*>& rows) {
    std::vector<SessionId> result;
    result.reserve(rows.size());
    for (const Row* each : rows) result.push_back(each->id());
    return result;
  }

  Outline outline;
  std::optional<Editor> editor;
};

TEST_F(EditorTest, StartsAtTheRootWithNothingSelected) {
  EXPECT_THAT(ids(editor->focusStack()), ElementsAre(1));
  EXPECT_THAT(ids(editor->selectedRows()), IsEmpty());
  EXPECT_FALSE(editor->hasSelection());
  editor->focus(row(1));
  EXPECT_FALSE(editor->hasSelection());
  editor->select(row(2), row(2));
  EXPECT_TRUE(editor->hasSelection());
  const Outline empty;
  const Editor onNothing(empty);
  EXPECT_EQ(onNothing.head().id(), empty.root().id());
  EXPECT_THAT(onNothing.selectedRows(), IsEmpty());
}

TEST_F(EditorTest, FocusStacksWhereItGoesDeeperAndTakesTheCaretAlong) {
  editor->focus(row(2));
  editor->focus(row(3));
  EXPECT_THAT(ids(editor->focusStack()), ElementsAre(1, 2, 3));
  EXPECT_EQ(editor->head().id(), 4U);
  EXPECT_TRUE(editor->focusOut());
  EXPECT_EQ(editor->head().id(), 3U);
  editor->focus(row(6));
  EXPECT_THAT(ids(editor->focusStack()), ElementsAre(1, 6));
  editor->focus(row(1));
  EXPECT_THAT(ids(editor->focusStack()), ElementsAre(1));
  EXPECT_FALSE(editor->focusOut());
}

TEST_F(EditorTest, ABlockSelectionCoversTheRowsBetweenItsEndsInEitherDirection) {
  editor->select(row(5), row(3));
  EXPECT_EQ(editor->anchor().id(), 5U);
  EXPECT_EQ(editor->head().id(), 3U);
  EXPECT_THAT(ids(editor->selectedRows()), ElementsAre(3, 4, 5));
}

TEST_F(EditorTest, SelectingOutsideTheFocusDrillsOut) {
  editor->focus(row(3));
  editor->select(row(5), row(5));
  EXPECT_THAT(ids(editor->focusStack()), ElementsAre(1));
}

TEST_F(EditorTest, OnlyRowsWithChildrenFold) {
  EXPECT_TRUE(editor->setCollapsed(row(3), true));
  EXPECT_TRUE(editor->setCollapsed(row(2), true));
  EXPECT_FALSE(editor->setCollapsed(row(2), true));
  EXPECT_FALSE(editor->setCollapsed(row(6), true));
  EXPECT_FALSE(editor->setCollapsed(row(1), true));
  EXPECT_THAT(ids(editor->collapsedRows()), ElementsAre(2, 3));
}

TEST_F(EditorTest, OutlivesTheRowsItRefersTo) {
  editor->focus(row(2));
  editor->setCollapsed(row(3), true);
  editor->select(row(3), row(4));
  outline.remove(*outline.find(2));
  EXPECT_THAT(ids(editor->focusStack()), ElementsAre(1));
  EXPECT_EQ(editor->head().id(), 6U);
  EXPECT_THAT(editor->collapsedRows(), IsEmpty());
  outline.remove(*outline.find(6));
  EXPECT_THAT(editor->selectedRows(), IsEmpty());
}

}  // namespace
}  // namespace vell::headless
