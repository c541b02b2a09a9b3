#include "headless/storage/container.h"
#include "headless/storage/files.h"
#include "json/writer.h"
#include "platform/container.h"
#include "tests/headless/server_conversation.h"

namespace vell::headless {
namespace {

class ServedScript : public Conversation {
 protected:
  ServedScript() { server_.open("groceries.json", groceries); }

  std::string run(const std::string& script) {
    return call("script.evaluate", R"({"script":)" + json::quoted(script) + R"(})");
  }
};

TEST_F(ServedScript, ReadsWhatIsOpen) {
  const struct {
    const char* script;
    const char* value;
  } rows[] = {
      {"vell.version", R"("1.2")"},
      {"vell.frontmostOutline.rows().map(String)", R"(["Groceries","Milk","Bread","Later"])"},
      {"vell.frontmostOutline.row('milk').parent.text", R"("Groceries")"},
      {"vell.frontmostOutline.row(2).parent", "null"},
      {"vell.frontmostOutline.row(2).children.map((row) => row.type)", R"(["task","body"])"},
      {"vell.frontmostOutlineEditor.outline.id", R"("outline-1")"},
      {"vell.frontmostOutlineEditor.selection.rows.length", "0"},
      {"vell.frontmostOutlineEditor.selection.head", "null"},
      {"vell.frontmostOutlineEditor.focusedRow", "null"},
      {"vell.frontmostOutlineEditor.update({focus: 'milk'}).focusedRow.text", R"("Milk")"},
      {"vell.frontmostOutlineEditor.update({selectRow: 'milk'}).selection.word", R"("Milk")"},
      {"vell.frontmostOutlineEditor.collapsed", "[]"},
      {"vell.frontmostOutlineEditor.perform('edit:undo')[0].performed", "false"},
      {"vell.frontmostOutline.row('milk').runs.length", "1"},
      {"vell.frontmostOutline.row('//task[9]')", "null"},
      {"(async () => (await vell.frontmostOutline).row('milk').text)()", R"("Milk")"},
      {"vell.commands.some(({id}) => id === 'row:toggle-done')", "true"},
      {"try { vell.frontmostOutline.row('nobody') } catch (error) { error.message.includes('nobody') }",
       "true"},
      {"try { vell.frontmostOutline.row('milk').type = 'poem' } catch (error) { error.message.slice(0, 33) }",
       R"("type: There is no row type \"poem\"")"},
      {"vell.search('//task')[0].rows[0].outline.id", R"("outline-1")"},
      {"vell.createOutline(); vell.search('//task').map(({outline, rows}) => [String(outline), "
       "...rows.map(String)])",
       R"([["groceries.json","Milk"]])"},
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
    outline.row(4).delete();
    outline.createRow("c", { after: milk });
    outline.row(5).move({ to: 2, position: 0 });
    outline.deleteRows("milk", 5);)";
  const std::string before = picture();
  for (const std::string ending : {"1", "nothing.at.all"}) {
    const std::string value = run(changes + ending);
    EXPECT_EQ(picture(), "a(b) Groceries c") << ending;
    EXPECT_TRUE(value == "1" || value == "ReferenceError: Can't find variable: nothing (line 10)") << value;
    EXPECT_EQ(at(call("command.perform", R"({"ids":["edit:undo"]})"), "0.performed"), "true");
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
  call("command.perform", R"({"ids":["edit:undo"]})");
  EXPECT_EQ(picture(), "Groceries(Milk Bread) Later");
}

TEST_F(ServedScript, SavesUnderANewName) {
  const std::string home = server_.home().path();
  const auto save = [&](const std::string& path) {
    return run("vell.frontmostOutline.save('" + path + "').fileURL?.slice(7)");
  };
  call("outline.new");
  call("row.create", R"({"markdown":"kept"})");
  const struct {
    std::string path, problem;
  } refused[] = {
      {home + "/groceries.json", "Error: File already exists: " + home + "/groceries.json (line 1)"},
      {home + "/away/a.md", "Error: Cannot save " + home + "/away/a.md: No such file or directory (line 1)"},
      {"a.md", "Error: Cannot save as \"a.md\": the path is not absolute (line 1)"},
      {home + "/a.pdf",
       "Error: Cannot keep an outline in " + home +
           "/a.pdf: outlines are files named .json, .md, .markdown, .vell, .opml, .txt (line 1)"},
  };
  for (const auto& row : refused) EXPECT_EQ(save(row.path), row.problem);
  EXPECT_EQ(run("vell.frontmostOutline.save()"), "Error: path: expected a string, got nothing (line 1)");
  EXPECT_EQ(at(call("outline.list"), "0.fileURL"), "null");
  EXPECT_EQ(save(home + "/./a.md"), json::quoted(home + "/a.md"));
  EXPECT_EQ(save(home + "/Untitled 7.vell"), json::quoted(home + "/Untitled%207.vell"));
  EXPECT_TRUE(readFile(home + "/a.md").bytes.ends_with("\n\nkept\n"));
  call("outline.close", R"({"discard":true})");
  EXPECT_NE(readFile(home + "/Untitled 7.vell").bytes.find("\nkept"), std::string::npos);
  EXPECT_EQ(Container(platform::containerDirectory()).untitledFiles(), std::vector<std::string>());
}

}  // namespace
}  // namespace vell::headless
