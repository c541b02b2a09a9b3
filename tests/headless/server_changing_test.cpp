#include <vector>

#include "tests/headless/server_conversation.h"

namespace vell::headless {
namespace {

class Changing : public Conversation {
 protected:
  Changing() { server_.open("groceries.json", groceries); }
};

struct Case {
  std::string method;
  std::string params;
  std::string picture;
};

/// Every change starts from "Groceries(Milk Bread) Later" and is one step to undo.
TEST_F(Changing, PutsRowsWhereTheyWereAskedFor) {
  const std::vector<Case> cases = {
      {"row.create", R"({"markdown":"New"})", "Groceries(Milk Bread) Later New"},
      {"row.create", R"({"markdown":""})", "Groceries(Milk Bread) Later "},
      {"row.create", R"({"markdown":"New\n","parent":"2"})", "Groceries(Milk Bread New) Later"},
      {"row.create", R"({"markdown":"New","parent":"2","position":"start"})",
       "Groceries(New Milk Bread) Later"},
      {"row.create", R"({"markdown":"New","parent":"2","position":1})", "Groceries(Milk New Bread) Later"},
      {"row.create", R"({"markdown":"New","parent":"2","position":"2"})", "Groceries(Milk Bread New) Later"},
      {"row.create", R"({"markdown":"New","before":"milk","parent":"5"})", "Groceries(New Milk Bread) Later"},
      {"row.create", R"({"markdown":"New","before":"milk","parent":"nobody","position":"nowhere"})",
       "Groceries(New Milk Bread) Later"},
      {"row.move", R"({"rows":["5"],"after":"milk","to":"nobody","position":99})",
       "Groceries(Milk Later Bread)"},
      {"row.create", R"({"markdown":"New","after":"2"})", "Groceries(Milk Bread) New Later"},
      {"row.createMany", R"({"markdown":"- a\n  - b\n- c","after":"milk"})",
       "Groceries(Milk a(b) c Bread) Later"},
      {"row.createMany", R"({"markdown":"\n"})", "Groceries(Milk Bread) Later"},
      {"row.move", R"({"rows":["5"],"to":"2"})", "Groceries(Milk Bread Later)"},
      {"row.move", R"({"rows":["5","4"],"to":"2","position":0})", "Groceries(Later Bread Milk)"},
      {"row.move", R"({"rows":["2","3","2"],"after":"5"})", "Later Groceries(Milk Bread)"},
      {"row.delete", R"({"rows":["3","2","4"]})", "Later"},
      {"row.update", R"({"rows":["milk","5"],"append":" **now**"})", "Groceries(Milk now Bread) Later now"},
      {"row.update", R"({"rows":["4"],"prepend":[{"string":"Rye "}]})", "Groceries(Milk Rye Bread) Later"},
      {"row.update", R"({"rows":["4"],"type":"hr"})", "Groceries(Milk ) Later"},
  };
  const std::string before = picture();
  for (const Case& c : cases) {
    const std::string result = call(c.method, c.params);
    EXPECT_TRUE(result.starts_with('[') || result.starts_with('{')) << c.params << result;
    EXPECT_EQ(picture(), c.picture) << c.method << c.params;
    if (c.picture != before) call("command.perform", R"({"ids":["edit:undo"]})");
    ASSERT_EQ(picture(), before) << c.method << c.params;
  }
}

TEST_F(Changing, RefusesWhatCannotBeAndChangesNothing) {
  const std::vector<Case> cases = {
      {"row.create", R"({"markdown":"a\nb"})", "The markdown of one row must be a single line"},
      {"row.create", R"({"markdown":"a","position":"middle"})", "There is no position \"middle\""},
      {"row.move", R"({"rows":["5","2"],"to":"4"})", "Row 2 cannot be moved into itself"},
      {"row.move", R"({"rows":["5"]})", "to: expected a row reference (or before, or after), got nothing"},
      {"row.delete", R"({"rows":["5","@focused"]})", "The root cannot be deleted"},
      {"row.delete", R"({"rows":["5","99"]})", R"(No row of "groceries.json" has the session id 99)"},
      {"row.delete", R"({})", "rows: expected an array of at least one string, got nothing"},
      {"row.update", R"({"rows":["5"],"text":5})",
       "text: expected a markdown string or an array of runs, got the number 5"},
      // A fresh outline has no caret.
      {"row.delete", R"({"rows":["@selection"]})", R"(Nothing is selected in "groceries.json")"},
      {"row.update", R"({"rows":["@selection"],"text":"x"})", R"(Nothing is selected in "groceries.json")"},
      {"row.update", R"({"rows":["5"],"text":[{"strng":"x"}]})",
       R"(text[0]: expected a run {string, attrs?}, got one with the member "strng")"},
      {"row.update", R"({"rows":["5"],"append":[{"attrs":{"em":""}}]})",
       "append[0].string: expected a string, got nothing"},
      {"row.update", R"({"rows":["5"],"prepend":[{"string":"a"},{"string":"b","style":"em"}]})",
       R"(prepend[1]: expected a run {string, attrs?}, got one with the member "style")"},
      {"row.update", R"({"rows":["5"],"text":[5]})", "text: expected an array of runs {string, attrs?}"},
      {"row.update", R"({"rows":["5"],"attributes":{"a":1}})",
       "attributes.a: expected a string or null, got a value of type number"},
      {"command.perform", R"({"ids":["row:delete","row:no-such"]})",
       R"(ids[1]: expected a command that vell_get_commands (vell get commands) lists, got "row:no-such")"},
      {"command.perform", R"({"ids":["row:togle-done"]})",
       R"(ids[0]: expected a command that vell_get_commands (vell get commands) lists, got "row:togle-done" (did )"
       R"(you mean "row:toggle-done"?))"},
      {"command.perform", R"({"ids":["undo"]})",
       R"(ids[0]: expected a command that vell_get_commands (vell get commands) lists, got "undo" (did )"
       R"(you mean "edit:undo"?))"},
  };
  for (const Case& c : cases) {
    const std::string message = call(c.method, c.params);
    EXPECT_TRUE(message.starts_with(c.picture)) << message;
    EXPECT_EQ(picture(), "Groceries(Milk Bread) Later");
  }
}

TEST_F(Changing, AnUpdateDoesWhatItCanAndSaysWhatItCannot) {
  const char* params = R"({"rows":["4"],"type":"poem","text":"x","attributes":{"color":"red","":"y"}})";
  const std::string entry = at(call("row.update", params), "0");
  EXPECT_EQ(at(entry, "row.text"), R"([{"string":"x"}])");
  EXPECT_EQ(at(entry, "row.attributes"), R"({"color":"red"})");
  EXPECT_NE(at(entry, "fieldErrors.attributes"), "");
  EXPECT_NE(at(entry, "fieldErrors.type"), "");
  const std::string second = at(call("row.update", R"({"rows":["4"],"attributes":{"color":null}})"), "0");
  EXPECT_EQ(at(second, "row.attributes"), "");
  EXPECT_EQ(at(second, "fieldErrors"), "");
}

TEST_F(Changing, TheMarkOfATaskIsItsTypeAndState) {
  const struct {
    std::string params;
    const char* type;
    const char* text;
    const char* attributes;
  } steps[] = {
      {R"("text":"- [x] Rye")", R"("task")", R"("Rye")", R"({"done":"true"})"},
      {R"("append":"- [ ]  bread")", R"("task")", R"("Rye bread")", ""},
      {R"("text":"- [X] Oats","type":"task")", R"("task")", R"("Oats")", R"({"done":"true"})"},
      {R"("text":"- [x] Rice","attributes":{"done":null})", R"("task")", R"("Rice")", ""},
      {R"("text":"- [x] as it is","type":"note")", R"("note")", R"("- [x] as it is")", ""},
      {R"("text":"- [x]")", R"("note")", R"("- [x]")", ""},
  };
  for (const auto& [params, type, text, attributes] : steps) {
    const std::string row = at(call("row.update", R"({"rows":["4"],)" + params + "}"), "0.row");
    EXPECT_EQ(at(row, "type"), type) << params;
    EXPECT_EQ(at(row, "text.0.string"), text) << params;
    EXPECT_EQ(at(row, "attributes"), attributes) << params;
  }
  call("row.update", R"({"rows":["4"],"type":"task","text":"Tea","attributes":{"a":"1"}})");
  call("row.update", R"({"rows":["4"],"attributes":{"done":"true"}})");
  EXPECT_EQ(call("outline.get", R"({"rowRefs":["4"],"rows":true,"format":"markdown"})"),
            R"("- [x] Tea {a=1}\n")");
}

TEST_F(Changing, DeletingCountsDescendantsOnceAndKeepsTheCaretNear) {
  call("editor.update", R"({"selectRow":"3"})");
  EXPECT_EQ(call("row.delete", R"({"rows":["@selection"]})"), R"({"deleted":1})");
  EXPECT_EQ(at(call("editor.get"), "selection.head"), "4");
  EXPECT_EQ(call("row.delete", R"({"rows":["2","4"]})"), R"({"deleted":2})");
  EXPECT_EQ(at(call("editor.get"), "selection.head"), "5");
  EXPECT_EQ(call("row.delete", R"({"rows":["5"]})"), R"({"deleted":1})");
  EXPECT_EQ(at(call("editor.get"), "selection.rows"), "[]");
  call("command.perform", R"({"ids":["edit:undo","edit:undo","edit:undo"]})");
  EXPECT_EQ(picture(), "Groceries(Milk Bread) Later");
  EXPECT_EQ(at(call("editor.get"), "selection.head"), "3");
}

TEST_F(Changing, TheEditorIsUpdatedFocusFirstThenFoldsThenSelection) {
  const std::string after =
      call("editor.update", R"({"selectRow":"4","selectHead":"3","focus":"2","collapse":["2"]})");
  EXPECT_EQ(at(after, "focused"), "[1,2]");
  EXPECT_EQ(at(after, "collapsed"), "[2]");
  EXPECT_EQ(at(after, "selection.anchor"), "4");
  EXPECT_EQ(at(after, "selection.rows"), "[3,4]");
  EXPECT_EQ(call("editor.update", R"({"selectHead":"3"})"),
            "selectHead: expected selectRow with it, got it alone");
  EXPECT_EQ(at(call("editor.update", R"({"selectRow":"@focused"})"), "selection.head"), "2");
  const std::string missing = call("editor.update", R"({"focus":"5","selectRow":"99"})");
  EXPECT_EQ(missing, R"(No row of "groceries.json" has the session id 99)");
  EXPECT_EQ(at(call("editor.get"), "focused"), "[1,2]");
}

}  // namespace
}  // namespace vell::headless
