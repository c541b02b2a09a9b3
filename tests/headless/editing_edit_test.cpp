#include "headless/editing/edit.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
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

TEST_F(EditTest, EveryKindOfChangeIsTakenBackAndMadeAgain) {
  const Row& root = outline.root();
  const std::vector<std::pair<const char*, std::function<void(Edit&)>>> changes = {
      {"create",
       [&](Edit& edit) {
         edit.insert(edit.make({RowType::task, Text("new"), {}, "pid"}), row(2), &row(3));
       }},
      {"move down", [&](Edit& edit) { edit.place(row(2), row(4), nullptr); }},
      {"move before itself", [&](Edit& edit) { edit.place(row(2), root, &row(2)); }},
      {"remove with a persistent id", [&](Edit& edit) { edit.remove(row(2)); }},
      {"type without text", [&](Edit& edit) { edit.setType(row(2), RowType::hr); }},
      {"text", [&](Edit& edit) { edit.setText(row(3), Text("other")); }},
      {"attributes",
       [&](Edit& edit) {
         edit.setAttributes(row(3), {{"color", "red"}});
       }},
      {"take over a persistent id", [&](Edit& edit) { edit.setPersistentId(row(4), "pid"); }},
      {"several in one", [&](Edit& edit) {
         Row& made = edit.make({.text = Text("x")});
         edit.attach(edit.make({.text = Text("y")}), made);
         edit.insert(made, root, nullptr);
         edit.place(row(3), made, nullptr);
         edit.remove(row(2));
         edit.setPersistentId(made, "pid");
         edit.remove(row(4));
       }}};
  for (const auto& [name, change] : changes) {
    const std::string before = picture();
    Edit edit(outline, 1'000'000);
    change(edit);
    const std::string after = picture();
    history->record(edit, editor->place());
    ASSERT_TRUE(history->undo()) << name;
    EXPECT_EQ(picture(), before) << name;
    EXPECT_TRUE(history->redo()) << name;
    EXPECT_EQ(picture(), after) << name;
    history->undo();
  }
}

TEST_F(EditTest, ChangesOfContentSetTheModifiedTimeAndOthersDoNot) {
  Edit edit(outline, 7000);
  edit.setText(row(2), Text("a"));  // as it is
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

TEST_F(EditTest, ANewStepEndsWhatCouldBeMadeAgain) {
  EXPECT_FALSE(history->undo());
  Edit first(outline, 1);
  first.insert(first.make({.text = Text("one")}), outline.root(), nullptr);
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
}

}  // namespace
}  // namespace vell::headless
