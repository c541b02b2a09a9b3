#include "headless/editing/edit.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "formats/format.h"
#include "headless/editing/history.h"

namespace vell::headless {
namespace {

/// 2 a (3 b "pid"), 4 c
class EditTest : public testing::Test {
 protected:
  EditTest() {
    Row* a = outline.create(RowType::body, Text("a"), 0);
    outline.insert(*a, outline.root());
    Row* b = outline.create(RowType::body, Text("b"), 0);
    outline.insert(*b, *a);
    outline.setPersistentId(*b, "pid");
    outline.insert(*outline.create(RowType::body, Text("c"), 0), outline.root());
    editor.emplace(outline);
    history.emplace(outline, *editor);
  }
  const Row& row(SessionId id) const { return *outline.find(id); }
  std::string picture() const {
    std::string text;
    formats::writeSession(outline, formats::placeAll(outline), true, text);
    return text;
  }

  Outline outline;
  std::optional<Editor> editor;
  std::optional<History> history;
};

TEST_F(EditTest, ChangesOfContentSetTheModifiedTimeAndOthersDoNot) {
  Edit edit(outline, 7000);
  edit.setText(row(2), Text("a"));              // as it is
  edit.place(row(2), outline.root(), &row(2));  // before itself
  EXPECT_EQ(row(2).next(), &row(4));
  edit.place(row(2), outline.root(), nullptr);
  EXPECT_EQ(row(2).modified(), 0);
  edit.setText(row(2), Text("A"));
  EXPECT_EQ(row(2).modified(), 7000);
  edit.setPersistentId(row(4), "pid");
  EXPECT_EQ(row(3).persistentId(), "");
  edit.rollBack();
  EXPECT_EQ(row(2).modified(), 0);
  EXPECT_EQ(row(3).persistentId(), "pid");
}

TEST_F(EditTest, AStepRestoresWhereTheEditorStood) {
  editor->select(row(4), row(4));
  Edit edit(outline, 1);
  const EditorPlace before = editor->place();
  edit.remove(row(4));
  editor->select(row(2), row(2));
  history->record(edit, before);
  history->undo();
  EXPECT_EQ(editor->head().id(), 4U);
  history->redo();
  EXPECT_EQ(editor->head().id(), 2U);
}

TEST_F(EditTest, TheEditorOutlivesTheRowsItRefersTo) {
  editor->focus(row(2));
  editor->setCollapsed(row(2), true);
  editor->select(row(3), row(3));
  outline.remove(*outline.find(3));
  EXPECT_EQ(editor->head().id(), 2U);
  EXPECT_TRUE(editor->collapsedRows().empty());
  outline.remove(*outline.find(2));
  EXPECT_EQ(editor->head().id(), 4U);
  EXPECT_EQ(editor->focusStack().size(), 1U);
  outline.remove(*outline.find(4));
  EXPECT_TRUE(editor->selectedRows().empty());
}

TEST_F(EditTest, ANewStepEndsWhatCouldBeMadeAgain) {
  EXPECT_FALSE(history->undo());
  const std::size_t held = outline.heldRows();
  Edit first(outline, 1);
  Row& one = first.make({.text = Text("one")});
  first.attach(first.make({.text = Text("below")}), one);
  first.insert(one, outline.root(), nullptr);
  first.insert(first.make({.text = Text("two")}), one, nullptr);
  history->record(first, editor->place());
  history->undo();
  Edit nothing(outline, 2);
  history->record(nothing, editor->place());
  EXPECT_TRUE(history->redo());
  history->undo();
  Edit second(outline, 2);
  second.remove(row(4));
  history->record(second, editor->place());
  EXPECT_FALSE(history->redo());
  EXPECT_EQ(outline.heldRows(), held);
}

void retype(Edit& edit, SessionId id) {
  const Row& row = *edit.outline().find(id);
  edit.setText(row, Text(row.text().string() + "x"));
}
void remove(Edit& edit, SessionId id) { edit.remove(*edit.outline().find(id)); }
template <std::size_t bytes>
void removeWith(Edit& edit, SessionId id) {
  edit.setText(*edit.outline().find(id), Text(std::string(bytes, 'x')));
  remove(edit, id);
}
void moveBelow4(Edit& edit, SessionId id) {
  edit.place(*edit.outline().find(id), *edit.outline().find(4), nullptr);
}

TEST_F(EditTest, AGroupThatHoldsTooMuchLosesItsBeginning) {
  history.emplace(outline, *editor, HistoryLimits{.bytes = 64'000});
  for (std::size_t length = 40'000; length < 40'010; ++length) {
    Edit edit(outline, 1);
    edit.setText(*outline.find(4), Text(std::string(length, 'x')));
    history->record(edit, editor->place(), 7);
  }
  while (history->undo()) continue;
  EXPECT_GT(outline.find(4)->text().string().size(), 40'000U);
}

struct DroppedCase {
  const char* name;
  std::vector<std::pair<void (*)(Edit&, SessionId), SessionId>> steps;
  int undoable;
  bool freesB;
};

class DroppedSteps : public EditTest, public testing::WithParamInterface<DroppedCase> {};

TEST_P(DroppedSteps, FreeTheRowsThatNoOtherStepBringsBack) {
  SCOPED_TRACE(GetParam().name);
  history.emplace(outline, *editor, HistoryLimits{.steps = 3, .bytes = 64'000});
  for (const auto& [change, id] : GetParam().steps) {
    Edit edit(outline, 1);
    change(edit, id);
    history->record(edit, editor->place());
    history->undo();
    history->redo();
  }
  EXPECT_EQ(outline.heldRows() < outline.nextId() - 2, GetParam().freesB);
  const std::string after = picture();
  int undone = 0;
  while (history->undo()) ++undone;
  EXPECT_EQ(undone, GetParam().undoable);
  EXPECT_EQ(outline.find(3) != nullptr, !GetParam().freesB);
  while (history->redo()) continue;
  EXPECT_EQ(picture(), after);
}

const DroppedCase droppedCases[] = {
    {"as many as are kept", {{remove, 3}, {retype, 4}, {retype, 4}}, 3, false},
    {"one more: the child, then its parent", {{remove, 3}, {remove, 2}, {retype, 4}, {retype, 4}}, 3, true},
    {"moved, and removed by a later step",
     {{moveBelow4, 3}, {remove, 3}, {retype, 4}, {retype, 4}},
     3,
     false},
    {"moved into what a later step removes",
     {{moveBelow4, 3}, {remove, 4}, {retype, 2}, {retype, 2}},
     3,
     false},
    {"more bytes", {{removeWith<40'000>, 3}, {removeWith<40'000>, 4}}, 1, true},
    {"the latest holds more by itself", {{removeWith<70'000>, 3}}, 1, false},
};
INSTANTIATE_TEST_SUITE_P(Each, DroppedSteps, testing::ValuesIn(droppedCases));

}  // namespace
}  // namespace vell::headless
