#include "tests/headless/server_conversation.h"

namespace vell::headless {
namespace {

using nlohmann::json;

class ServedScript : public Conversation {
 protected:
  ServedScript() { server_.open("groceries.json", groceries); }

  json run(const std::string& script) { return call("script.evaluate", {{"script", script}}); }
};

TEST_F(ServedScript, ReadsWhatIsOpen) {
  const struct {
    const char* script;
    json value;
  } rows[] = {
      {"vell.version", "1.2"},
      {"vell.frontmostOutline.rows().map(String)", {"Groceries", "Milk", "Bread", "Later"}},
      {"vell.frontmostOutline.row('milk').parent.text", "Groceries"},
      {"vell.frontmostOutline.row(2).parent", nullptr},
      {"vell.frontmostOutline.row(2).children.map((row) => row.type)", {"task", "body"}},
      {"vell.frontmostOutlineEditor.outline.id", "outline-1"},
      {"vell.frontmostOutlineEditor.selection.rows.length", 1},
      {"vell.commands.some(({id}) => id === 'row:toggle-done')", true},
      {"try { vell.frontmostOutline.row('nobody') } catch (error) { error.message.includes('nobody') }",
       true},
  };
  for (const auto& row : rows) EXPECT_EQ(run(row.script), row.value) << row.script;
}

TEST_F(ServedScript, IsOneStepToUndoEvenWhenItFails) {
  const char* changes = R"(
    const outline = vell.frontmostOutline;
    const milk = outline.row("milk");
    milk.text = "Oat milk";
    milk.setAttribute("due", 3).move({ after: 5 });
    outline.createRows("- a\n  - b", { position: 0 });
    outline.row(4).delete();)";
  const std::string before = picture();
  for (const std::string ending : {"1", "nothing.at.all"}) {
    const json value = run(changes + ending);
    EXPECT_EQ(picture(), "a(b) Groceries Later Oat milk") << ending;
    EXPECT_TRUE(value == 1 || value == "ReferenceError: Can't find variable: nothing (line 7)") << value;
    EXPECT_EQ(call("command.perform", {{"ids", {"edit:undo"}}})[0]["performed"], true);
    EXPECT_EQ(picture(), before) << ending;
  }
}

TEST_F(ServedScript, CutsItsStepWhereItTakesSomethingBack) {
  run(R"(
    const row = vell.frontmostOutline.row("milk");
    row.text = "one";
    vell.frontmostOutlineEditor.perform("edit:undo");
    row.text = "two";
    row.append(" three");)");
  EXPECT_EQ(picture(), "Groceries(two three Bread) Later");
  call("command.perform", {{"ids", {"edit:undo"}}});
  EXPECT_EQ(picture(), "Groceries(Milk Bread) Later");
}

}  // namespace
}  // namespace vell::headless
