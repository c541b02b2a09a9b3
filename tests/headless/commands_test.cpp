#include <iterator>
#include <sstream>
#include <vector>

#include "json/writer.h"
#include "tests/headless/server_conversation.h"

namespace vell::headless {
namespace {

std::vector<std::string> split(const std::string& words) {
  std::istringstream stream(words);
  return {std::istream_iterator<std::string>(stream), {}};
}

class Commands : public Conversation {
 protected:
  Commands() { server_.open("groceries.json", groceries); }

  /// Performs commands, separated by blanks, and tells for each whether it did something.
  std::string perform(const std::string& ids) {
    std::string params;
    json::Writer(params).beginObject().key("ids").array(split(ids)).endObject();
    std::string performed;
    for (const std::string& entry : elements(call("command.perform", params)))
      performed += at(entry, "performed") == "true" ? "yes " : "no ";
    return performed;
  }
};

struct Case {
  std::string row;   ///< where the caret is put, or "anchor-head"
  std::string ids;   ///< separated by blanks
  std::string rows;  ///< afterwards
  std::string performed = "yes";
};

TEST_F(Commands, ChangeRowsAndAreOneStepToUndo) {
  const std::string before = picture();
  const std::vector<Case> cases = {
      {"5", "row:block-move-up", "Later Groceries(Milk Bread)"},
      {"2", "row:block-move-up", before, "no"},
      {"2", "row:block-move-down", "Later Groceries(Milk Bread)"},
      {"4", "row:block-move-down", before, "no"},
      {"4", "row:block-move-to-top", "Groceries(Bread Milk) Later"},
      {"3", "row:block-move-to-bottom", "Groceries(Bread Milk) Later"},
      {"5", "row:indent", "Groceries(Milk Bread Later)"},
      {"2", "row:indent", before, "no"},
      {"3-4", "row:outdent", "Groceries Milk Bread Later"},
      {"3-4", "row:group", "Groceries((Milk Bread)) Later"},
      {"2", "row:ungroup", "Milk Bread Later"},
      {"3-5", "row:indent", before, "no"},
      {"2", "row:sort-children-ascending", "Groceries(Bread Milk) Later"},
      {"2", "row:sort-children-descending", before, "no"},
      {"2", "row:reverse-children", "Groceries(Bread Milk) Later"},
      {"2", "row:duplicate", "Groceries(Milk Bread) Groceries(Milk Bread) Later"},
      {"2-3", "row:delete", "Later"},
      {"4", "row:join-with-next", before, "no"},
      {"3", "row:insert-above", "Groceries( Milk Bread) Later"},
      {"3", "row:insert-below", "Groceries(Milk  Bread) Later"},
      {"5", "row:insert-child", "Groceries(Milk Bread) Later()"},
      {"4", "format:hr", "Groceries(Milk ) Later"},
      {"2", "row:delete edit:undo", before},
      {"2", "row:delete edit:undo edit:redo", "Later"},
      {"5", "row:indent row:outdent row:outdent", before, "yes yes no"},
      {"5", "selection:up selection:up row:delete", "Groceries(Bread) Later"},
  };
  for (const Case& c : cases) {
    const std::size_t dash = c.row.find('-');
    const std::string head =
        dash == std::string::npos ? "" : R"(,"selectHead":")" + c.row.substr(dash + 1) + '"';
    call("editor.update", R"({"selectRow":")" + c.row.substr(0, dash) + '"' + head + "}");
    const std::string performed = perform(c.ids);
    EXPECT_EQ(picture(), c.rows) << c.ids << " at " << c.row;
    EXPECT_EQ(performed.substr(0, c.performed.size()), c.performed) << c.ids << " at " << c.row;
    while (picture() != before && perform("edit:undo") == "yes ") continue;
    ASSERT_EQ(picture(), before) << c.ids;
  }
}

TEST_F(Commands, MoveTheSelectionOverWhatIsSeen) {
  const std::vector<Case> cases = {
      {"2", "selection:down", "[3]"},
      {"2", "fold:collapse selection:down", "[5]"},
      {"5", "fold:collapse-all selection:up", "[2]"},
      {"4", "selection:parent", "[2]"},
      {"2", "selection:first-child", "[3]"},
      {"3", "selection:next-sibling", "[4]"},
      {"4", "selection:previous-sibling", "[3]"},
      {"3", "selection:last", "[5]"},
      {"5", "selection:first", "[2]"},
      {"2", "selection:branch", "[2,3,4]"},
      {"3", "selection:all", "[2,3,4,5]"},
      {"3", "selection:extend-down selection:extend-down", "[3,4,5]"},
      {"3", "selection:extend-up", "[2,3]"},
      {"2", "focus:in selection:all", "[3,4]"},
      {"3", "focus:in selection:up", "[3]", "yes no"},
      {"3", "focus:in focus:home", "[3]"},
      {"2", "selection:up", "[2]", "no"},
      {"3", "fold:collapse", "[3]", "no"},
      {"2", "selection:parent", "[2]", "no"},
  };
  for (const Case& c : cases) {
    perform("focus:home fold:expand-all");
    call("editor.update", R"({"selectRow":)" + json::quoted(c.row) + R"(})");
    const std::string performed = perform(c.ids);
    EXPECT_EQ(at(call("editor.get"), "selection.rows"), c.rows) << c.ids << " at " << c.row;
    EXPECT_EQ(performed.substr(0, c.performed.size()), c.performed) << c.ids << " at " << c.row;
  }
}

TEST_F(Commands, StyleAndMarkRows) {
  const auto row = [&](const char* ref) {
    return at(call("outline.get", R"({"rowRefs":[)" + json::quoted(ref) + R"(],"rows":true})"), "0");
  };
  call("editor.update", R"({"selectRow":"3","selectHead":"4"})");
  perform("row:toggle-done format:toggle-bold");
  EXPECT_EQ(at(row("3"), "attributes.done"), R"("true")");
  EXPECT_EQ(at(row("4"), "attributes"), "");
  EXPECT_EQ(at(row("4"), "text"), R"([{"attrs":{"strong":""},"string":"Bread"}])");
  perform("format:toggle-bold row:toggle-done format:quote");
  EXPECT_EQ(at(row("4"), "text"), R"([{"string":"Bread"}])");
  EXPECT_EQ(at(row("3"), "attributes"), "");
  EXPECT_EQ(at(row("3"), "type"), R"("quote")");
  call("editor.update", R"({"selectRow":"3"})");
  perform("row:join-with-next");
  EXPECT_EQ(at(row("3"), "text"), R"([{"string":"Milk Bread"}])");
}

TEST_F(Commands, AreListedInOrder) {
  const auto list = elements(call("command.list"));
  ASSERT_GE(list.size(), 40U);
  for (std::size_t i = 1; i < list.size(); ++i) EXPECT_LT(at(list[i - 1], "id"), at(list[i], "id"));
  EXPECT_EQ(at(list[0], "source"), R"("Vell Menu")");
}

}  // namespace
}  // namespace vell::headless
