#include <vector>

#include "tests/headless/server_conversation.h"

namespace vell::headless {
namespace {

using nlohmann::json;

class Changing : public Conversation {
 protected:
  Changing() { server_.open("groceries.json", groceries); }
};

struct Case {
  std::string method;
  json params;
  std::string picture;
};

/// Every change starts from "Groceries(Milk Bread) Later" and is one step to undo.
TEST_F(Changing, PutsRowsWhereTheyWereAskedFor) {
  const std::vector<Case> cases = {
      {"row.create", {{"markdown", "New"}}, "Groceries(Milk Bread) Later New"},
      {"row.create", {{"markdown", ""}}, "Groceries(Milk Bread) Later "},
      {"row.create", {{"markdown", "New\n"}, {"parent", "2"}}, "Groceries(Milk Bread New) Later"},
      {"row.create",
       {{"markdown", "New"}, {"parent", "2"}, {"position", "start"}},
       "Groceries(New Milk Bread) Later"},
      {"row.create",
       {{"markdown", "New"}, {"parent", "2"}, {"position", 1}},
       "Groceries(Milk New Bread) Later"},
      {"row.create",
       {{"markdown", "New"}, {"parent", "2"}, {"position", "2"}},
       "Groceries(Milk Bread New) Later"},
      {"row.create",
       {{"markdown", "New"}, {"before", "milk"}, {"parent", "5"}},
       "Groceries(New Milk Bread) Later"},
      {"row.create",
       {{"markdown", "New"}, {"before", "milk"}, {"parent", "nobody"}, {"position", "nowhere"}},
       "Groceries(New Milk Bread) Later"},
      {"row.move",
       {{"rows", {"5"}}, {"after", "milk"}, {"to", "nobody"}, {"position", 99}},
       "Groceries(Milk Later Bread)"},
      {"row.create", {{"markdown", "New"}, {"after", "2"}}, "Groceries(Milk Bread) New Later"},
      {"row.createMany",
       {{"markdown", "- a\n  - b\n- c"}, {"after", "milk"}},
       "Groceries(Milk a(b) c Bread) Later"},
      {"row.createMany", {{"markdown", "\n"}}, "Groceries(Milk Bread) Later"},
      {"row.move", {{"rows", {"5"}}, {"to", "2"}}, "Groceries(Milk Bread Later)"},
      {"row.move", {{"rows", {"5", "4"}}, {"to", "2"}, {"position", 0}}, "Groceries(Later Bread Milk)"},
      {"row.move", {{"rows", {"2", "3", "2"}}, {"after", "5"}}, "Later Groceries(Milk Bread)"},
      {"row.delete", {{"rows", {"3", "2", "4"}}}, "Later"},
      {"row.update",
       {{"rows", {"milk", "5"}}, {"append", " **now**"}},
       "Groceries(Milk now Bread) Later now"},
      {"row.update",
       {{"rows", {"4"}}, {"prepend", json::array({{{"string", "Rye "}}})}},
       "Groceries(Milk Rye Bread) Later"},
      {"row.update", {{"rows", {"4"}}, {"type", "hr"}}, "Groceries(Milk ) Later"},
  };
  const std::string before = picture();
  for (const Case& c : cases) {
    const json result = call(c.method, c.params);
    EXPECT_FALSE(result.is_string()) << c.params << result;
    EXPECT_EQ(picture(), c.picture) << c.method << c.params;
    if (c.picture != before) call("command.perform", {{"ids", {"edit:undo"}}});
    ASSERT_EQ(picture(), before) << c.method << c.params;
  }
}

TEST_F(Changing, RefusesWhatCannotBeAndChangesNothing) {
  const std::vector<Case> cases = {
      {"row.create", {{"markdown", "a\nb"}}, "The markdown of one row must be a single line"},
      {"row.create", {{"markdown", "a"}, {"position", "middle"}}, "There is no position \"middle\""},
      {"row.move", {{"rows", {"5", "2"}}, {"to", "4"}}, "Row 2 cannot be moved into itself"},
      {"row.move", {{"rows", {"5"}}}, "to: expected a row reference (or before, or after), got nothing"},
      {"row.delete", {{"rows", {"5", "@focused"}}}, "The root cannot be deleted"},
      {"row.delete", {{"rows", {"5", "99"}}}, R"(No row of "groceries.json" has the session id 99)"},
      {"row.delete", json::object(), "rows: expected an array of at least one string, got nothing"},
      {"row.update",
       {{"rows", {"5"}}, {"text", 5}},
       "text: expected a markdown string or an array of runs, got the number 5"},
      // A fresh outline has no caret.
      {"row.delete", {{"rows", {"@selection"}}}, R"(Nothing is selected in "groceries.json")"},
      {"row.update", {{"rows", {"@selection"}}, {"text", "x"}}, R"(Nothing is selected in "groceries.json")"},
      {"row.update",
       {{"rows", {"5"}}, {"text", json::array({{{"strng", "x"}}})}},
       R"(text[0]: expected a run {string, attrs?}, got one with the member "strng")"},
      {"row.update",
       {{"rows", {"5"}}, {"append", json::array({{{"attrs", {{"em", ""}}}}})}},
       "append[0].string: expected a string, got nothing"},
      {"row.update",
       {{"rows", {"5"}}, {"prepend", json::array({{{"string", "a"}}, {{"string", "b"}, {"style", "em"}}})}},
       R"(prepend[1]: expected a run {string, attrs?}, got one with the member "style")"},
      {"row.update",
       {{"rows", {"5"}}, {"text", json::array({5})}},
       "text: expected an array of runs {string, attrs?}"},
      {"row.update",
       {{"rows", {"5"}}, {"attributes", {{"a", 1}}}},
       "attributes.a: expected a string or null, got a value of type number"},
      {"command.perform",
       {{"ids", {"row:delete", "row:no-such"}}},
       R"(ids[1]: expected a command that vell_get_commands (vell get commands) lists, got "row:no-such")"},
      {"command.perform",
       {{"ids", {"row:togle-done"}}},
       R"(ids[0]: expected a command that vell_get_commands (vell get commands) lists, got "row:togle-done" (did )"
       R"(you mean "row:toggle-done"?))"},
  };
  for (const Case& c : cases) {
    const json message = call(c.method, c.params);
    EXPECT_TRUE(message.is_string() && message.get<std::string>().rfind(c.picture, 0) == 0) << message;
    EXPECT_EQ(picture(), "Groceries(Milk Bread) Later");
  }
}

TEST_F(Changing, AnUpdateDoesWhatItCanAndSaysWhatItCannot) {
  const json params = {
      {"rows", {"4"}}, {"type", "poem"}, {"text", "x"}, {"attributes", {{"color", "red"}, {"", "y"}}}};
  const json entry = call("row.update", params)[0];
  EXPECT_EQ(entry["row"]["text"], json::parse(R"([{"string":"x"}])"));
  EXPECT_EQ(entry["row"]["attributes"], json::parse(R"({"color":"red"})"));
  EXPECT_TRUE(entry["fieldErrors"].contains("attributes"));
  EXPECT_TRUE(entry["fieldErrors"].contains("type"));
  const json second = call("row.update", {{"rows", {"4"}}, {"attributes", {{"color", nullptr}}}})[0];
  EXPECT_FALSE(second["row"].contains("attributes"));
  EXPECT_FALSE(second.contains("fieldErrors"));
}

TEST_F(Changing, TheMarkOfATaskIsItsTypeAndState) {
  struct Step {
    json params;
    const char* type;
    const char* text;
    const char* done;  ///< null where the row has no attributes
  };
  const Step steps[] = {
      {{{"text", "- [x] Rye"}}, "task", "Rye", "true"},
      {{{"append", "- [ ]  bread"}}, "task", "Rye bread", nullptr},
      {{{"text", "- [X] Oats"}, {"type", "task"}}, "task", "Oats", "true"},
      {{{"text", "- [x] Rice"}, {"attributes", {{"done", nullptr}}}}, "task", "Rice", nullptr},
      {{{"text", "- [x] as it is"}, {"type", "note"}}, "note", "- [x] as it is", nullptr},
      {{{"text", "- [x]"}}, "note", "- [x]", nullptr},
  };
  for (const auto& [params, type, text, done] : steps) {
    json update = params;
    update["rows"] = {"4"};
    const json row = call("row.update", update)[0]["row"];
    EXPECT_EQ(row["type"], type) << params;
    EXPECT_EQ(row["text"][0]["string"], text) << params;
    EXPECT_EQ(row.value("attributes", json()), done == nullptr ? json() : json({{"done", done}})) << params;
  }
}

TEST_F(Changing, DeletingCountsDescendantsOnceAndKeepsTheCaretNear) {
  call("editor.update", {{"selectRow", "3"}});
  EXPECT_EQ(call("row.delete", {{"rows", {"@selection"}}}), json::parse(R"({"deleted":1})"));
  EXPECT_EQ(call("editor.get", {})["selection"]["head"], 4);
  EXPECT_EQ(call("row.delete", {{"rows", {"2", "4"}}}), json::parse(R"({"deleted":2})"));
  EXPECT_EQ(call("editor.get", {})["selection"]["head"], 5);
  EXPECT_EQ(call("row.delete", {{"rows", {"5"}}}), json::parse(R"({"deleted":1})"));
  EXPECT_EQ(call("editor.get", {})["selection"]["rows"], json::array());
  call("command.perform", {{"ids", {"edit:undo", "edit:undo", "edit:undo"}}});
  EXPECT_EQ(picture(), "Groceries(Milk Bread) Later");
  EXPECT_EQ(call("editor.get", {})["selection"]["head"], 3);
}

TEST_F(Changing, TheEditorIsUpdatedFocusFirstThenFoldsThenSelection) {
  const json after =
      call("editor.update", {{"selectRow", "4"}, {"selectHead", "3"}, {"focus", "2"}, {"collapse", {"2"}}});
  EXPECT_EQ(after["focused"], json({1, 2}));
  EXPECT_EQ(after["collapsed"], json({2}));
  EXPECT_EQ(after["selection"]["anchor"], 4);
  EXPECT_EQ(after["selection"]["rows"], json({3, 4}));
  EXPECT_EQ(call("editor.update", {{"selectHead", "3"}}),
            "selectHead: expected selectRow with it, got it alone");
  EXPECT_EQ(call("editor.update", {{"selectRow", "@focused"}})["selection"]["head"], 2);
  const json missing = call("editor.update", {{"focus", "5"}, {"selectRow", "99"}});
  EXPECT_TRUE(missing.is_string());
  EXPECT_EQ(call("editor.get", {})["focused"], json({1, 2}));
}

}  // namespace
}  // namespace vell::headless
