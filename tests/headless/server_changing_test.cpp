#include <regex>

#include "json/document.h"
#include "tests/headless/server_conversation.h"

namespace vell::headless {
namespace {

class Changing : public Conversation {
 protected:
  Changing() { server_.open("groceries.json", groceries); }
};

struct Change {
  const char* before;  ///< rows in .vell
  const char* method;
  const char* params;
  /// The rows afterwards, the time of the change as "now"; or how the message begins that refuses it.
  std::string outcome;
  /// The answer's fieldErrors, or how many rows were deleted.
  std::string told = "";
};

constexpr const char* tree = "a {#a}\n\tb {#b}\n\tc {#c}\n\t\td {#d}\n\te {#e}\nf {#f}\n";
const std::string oneLine =
    "The markdown of one row must be a single line; use vell_create_rows (vell create rows) for several rows";
const std::string types = "; use one of body, heading, task, note, quote, code, hr, ordered, unordered";
const std::string commands = "expected a command that vell_get_commands (vell get commands) lists, got ";

const Change changes[] = {
    // New rows.
    {"", "row.create", R"({"markdown":""})", "{created=now}\n"},
    {"", "row.create", R"({"markdown":" \t\n"})", "{created=now}\n"},
    {"", "row.create", R"({"markdown":"## **x** {#p type=task color=red}\r\n"})",
     "[ ] **x** {#p color=red created=now}\n"},
    {"", "row.create", R"({"markdown":"## x"})", "# x {created=now}\n"},
    {"", "row.create", R"({"markdown":"a\nb"})", oneLine},
    {"", "row.create", R"({"markdown":"a\n\n"})", oneLine},
    {"", "row.create", R"({"markdown":"a {#12}"})",
     R"(The persistent id "12" would be taken for a session id)"},
    {"a {#p}\n", "row.create", R"({"markdown":"b {#p}"})", "a {modified=now}\nb {#p created=now}\n"},
    {"a {#a}\nb\n", "row.createMany", R"({"markdown":"---\n- x\n  - y\n\n# z\nw\n","after":"a"})",
     "a {#a}\n--- {created=now}\n- x {created=now}\n\t- y {created=now}\n# z {created=now}\n\tw "
     "{created=now}\nb\n"},
    {"", "row.createMany", R"({"markdown":"\n  \n"})", ""},
    {"", "row.createMany", R"({"markdown":"---\nid: x\ntitle: T\n---\n\na\n"})", "a {created=now}\n"},
    {"", "row.createMany", R"({"markdown":"- a\n  - b {#/p}\n"})",
     R"(The persistent id "/p" would be taken for a path)"},
    {"", "row.createMany", R"({"markdown":"a {#@p}"})",
     R"(The persistent id "@p" would be taken for @selection or @focused)"},
    // Where they go.
    {"a {#a}\n\tb\n", "row.create", R"({"markdown":"x","parent":"a"})", "a {#a}\n\tb\n\tx {created=now}\n"},
    {"a {#a}\n\tb\n", "row.create", R"({"markdown":"x","parent":"a","position":"start"})",
     "a {#a}\n\tx {created=now}\n\tb\n"},
    {"a\nb\nc\n", "row.create", R"({"markdown":"x","position":1})", "a\nx {created=now}\nb\nc\n"},
    {"a\nb\nc\n", "row.create", R"({"markdown":"x","position":"2"})", "a\nb\nx {created=now}\nc\n"},
    {"a\nb {#b}\n", "row.create", R"({"markdown":"x","before":"b","parent":"nobody","position":"nowhere"})",
     "a\nx {created=now}\nb {#b}\n"},
    {"", "row.create", R"({"markdown":"x","position":"1"})",
     "There is no position 1: the row has 0 children; use start, end or 0 to 0"},
    {"", "row.create", R"({"markdown":"x","position":"-1"})",
     R"(There is no position "-1"; use start, end or an index from 0)"},
    {"", "row.create", R"({"markdown":"x","position":"strat"})",
     R"(There is no position "strat" (did you mean "start"?); use start, end or an index from 0)"},
    {"", "row.create", R"({"markdown":"x","position":"99999999999999999999"})",
     "There is no position 99999999999999999999: the row has 0 children; use start, end or 0 to 0"},
    {"", "row.create", R"({"markdown":"x","after":"/"})",
     "Nothing can stand beside the root; name a row below it"},
    {"a {#a}\n", "row.create", R"({"markdown":"x","before":"a","after":"a"})", "x {created=now}\na {#a}\n"},
    // Rows that move. Within one parent the index counts those that stay; a row below another one stays in
    // it.
    {tree, "row.move", R"({"rows":["f"],"to":"a","position":"start"})",
     "a {#a}\n\tf {#f}\n\tb {#b}\n\tc {#c}\n\t\td {#d}\n\te {#e}\n"},
    {tree, "row.move", R"({"rows":["f","b"],"after":"d","to":"nobody","position":99})",
     "a {#a}\n\tc {#c}\n\t\td {#d}\n\t\tf {#f}\n\t\tb {#b}\n\te {#e}\n"},
    {tree, "row.move", R"({"rows":["b"],"to":"a","position":1})",
     "a {#a}\n\tc {#c}\n\t\td {#d}\n\tb {#b}\n\te {#e}\nf {#f}\n"},
    {tree, "row.move", R"({"rows":["e","c"],"after":"b"})",
     "a {#a}\n\tb {#b}\n\te {#e}\n\tc {#c}\n\t\td {#d}\nf {#f}\n"},
    {tree, "row.move", R"({"rows":["c","f"],"after":"b"})",
     "a {#a}\n\tb {#b}\n\tc {#c}\n\t\td {#d}\n\tf {#f}\n\te {#e}\n"},
    {tree, "row.move", R"({"rows":["b","b","d"],"before":"a"})",
     "b {#b}\nd {#d}\na {#a}\n\tc {#c}\n\te {#e}\nf {#f}\n"},
    {tree, "row.move", R"({"rows":["d","c"],"to":"/"})",
     "a {#a}\n\tb {#b}\n\te {#e}\nf {#f}\nc {#c}\n\td {#d}\n"},
    {tree, "row.move", R"({"rows":["a"],"to":"d"})",
     R"(Row "a" cannot be moved into itself or a row below it)"},
    {tree, "row.move", R"({"rows":["f","c"],"to":"c"})",
     R"(Row "c" cannot be moved into itself or a row below it)"},
    {tree, "row.move", R"({"rows":["a"],"before":"d"})",
     R"(Row "a" cannot be moved into itself or a row below it)"},
    {"a\n\tb\n", "row.move", R"({"rows":["2"],"to":"3"})", "Row 2 cannot be moved into itself"},
    {tree, "row.move", R"({"rows":["b"],"before":"b"})", R"(Row "b" cannot be moved beside itself)"},
    {tree, "row.move", R"({"rows":["b","/"],"to":"f"})", "The root cannot be moved; name rows below it"},
    {tree, "row.move", R"({"rows":["b"],"to":"a","position":"3"})",
     "There is no position 3: the row has 2 children; use start, end or 0 to 2"},
    {tree, "row.move", R"({"rows":["b"]})",
     "to: expected a row reference (or before, or after), got nothing"},
    // Rows that go.
    {tree, "row.delete", R"({"rows":["d","c","c","f"]})", "a {#a}\n\tb {#b}\n\te {#e}\n", "3"},
    {tree, "row.delete", R"({"rows":["a","f","d"]})", "", "6"},
    {tree, "row.delete", R"({"rows":["//nothing"]})", tree, "0"},
    {tree, "row.delete", R"({"rows":["b","/"]})", "The root cannot be deleted; name rows below it"},
    {tree, "row.delete", R"({"rows":["b","@focused"]})", "The root cannot be deleted; name rows below it"},
    {tree, "row.delete", R"({"rows":["b","99"]})", R"(No row of "a.vell" has the session id 99)"},
    {tree, "row.delete", "{}", "rows: expected an array of at least one string, got nothing"},
    {tree, "row.delete", R"({"rows":["@selection"]})", R"(Nothing is selected in "a.vell")"},
    // Texts.
    {"a {#a}\n", "row.update", R"({"rows":["a"],"text":"- **x** {#p}"})",
     "\\- **x** {#p\\} {#a modified=now}\n"},
    {"**a** {#a}\n", "row.update", R"({"rows":["a"],"append":"_b_"})", "**a**_b_ {#a modified=now}\n"},
    {"*b {#a}\n", "row.update", R"({"rows":["a"],"prepend":"a\\*"})", "a**b {#a modified=now}\n"},
    {"b {#a}\n", "row.update", R"({"rows":["a"],"prepend":[{"string":"a "}]})", "a b {#a modified=now}\n"},
    {"a {#a}\n", "row.update", R"({"rows":["a"],"text":"a"})", "a {#a}\n"},
    {"a {#a}\nb {#b}\n", "row.update", R"({"rows":["a","b","a"],"append":"!"})",
     "a! {#a modified=now}\nb! {#b modified=now}\n"},
    {"a {#a}\n", "row.update", R"({"rows":["a"],"text":"x","append":"y"})",
     "text, append and prepend exclude one another; give one of them"},
    {"a\n", "row.update", R"({"rows":["2"],"text":5})",
     "text: expected a markdown string or an array of runs, got the number 5"},
    {"a\n", "row.update", R"({"rows":["2"],"text":[{"strng":"x"}]})",
     R"(text[0]: expected a run {string, attrs?}, got one with the member "strng")"},
    {"a\n", "row.update", R"({"rows":["2"],"append":[{"attrs":{"em":""}}]})",
     "append[0].string: expected a string, got nothing"},
    {"a\n", "row.update", R"({"rows":["2"],"prepend":[{"string":"a"},{"string":"b","style":"em"}]})",
     R"(prepend[1]: expected a run {string, attrs?}, got one with the member "style")"},
    {"a\n", "row.update", R"({"rows":["2"],"text":[5]})", "text: expected an array of runs {string, attrs?}"},
    {"a\n", "row.update", R"({"rows":["@selection"],"text":"x"})", R"(Nothing is selected in "a.vell")"},
    // The mark of a task is its type and state.
    {"a {#a}\n", "row.update", R"({"rows":["a"],"text":"- [x] b"})", "[x] b {#a modified=now}\n"},
    {"[x] a {#a}\n", "row.update", R"({"rows":["a"],"append":"- [ ]  b"})", "[ ] a b {#a modified=now}\n"},
    {"a {#a}\n", "row.update", R"({"rows":["a"],"text":"- [X] b","type":"task"})",
     "[x] b {#a modified=now}\n"},
    {"[x] a {#a}\n", "row.update", R"({"rows":["a"],"text":"- [x] b","attributes":{"done":null}})",
     "[ ] b {#a modified=now}\n"},
    {"a {#a}\n", "row.update", R"({"rows":["a"],"text":"- [x] b","type":"note"})",
     "// - [x] b {#a modified=now}\n"},
    {"// a {#a}\n", "row.update", R"({"rows":["a"],"text":"- [x]"})", "// - [x] {#a modified=now}\n"},
    {"[ ] a {#a b=1}\n", "row.update", R"({"rows":["a"],"attributes":{"done":"true"}})",
     "[x] a {#a b=1 modified=now}\n"},
    // Types and attributes.
    {"a {#a}\n", "row.update", R"({"rows":["a"],"type":"hr"})", "--- {#a modified=now}\n"},
    {"a {#a}\n", "row.update", R"({"rows":["a"],"text":"x","type":"hr"})", "--- {#a modified=now}\n",
     R"({"text":"A row of type hr has no text"})"},
    {"a {#a}\n", "row.update", R"({"rows":["a"],"append":"x","type":"root"})", "ax {#a modified=now}\n",
     R"({"type":"There is no row type \"root\")" + types + "\"}"},
    {"a {#a}\n", "row.update", R"({"rows":["a"],"type":"tsak"})", "a {#a}\n",
     R"({"type":"There is no row type \"tsak\" (did you mean \"task\"?))" + types + "\"}"},
    {"a {#a k=1 l=2 m=3}\n", "row.update",
     R"({"rows":["a"],"attributes":{"l":null,"k":"9","n":"","":"x","o":null}})",
     "a {#a k=9 m=3 n=\"\" modified=now}\n", R"({"attributes":"An attribute's name cannot be empty"})"},
    {"a\n", "row.update", R"({"rows":["2"],"attributes":{"a":1}})",
     "attributes.a: expected a string or null, got a value of type number"},
    // Persistent ids.
    {"a {#a}\nb {#b}\n", "row.update", R"({"rows":["a"],"persistentId":"b"})",
     "a {#b modified=now}\nb {modified=now}\n"},
    {"a {#a}\n", "row.update", R"({"rows":["a"],"persistentId":"12"})", "a {#a}\n",
     R"({"persistentId":"\"12\" would be taken for a session id"})"},
    {"a {#a}\n", "row.update", R"({"rows":["a"],"persistentId":"n\u0000x"})", "a {#a}\n",
     R"({"persistentId":"\"n…\" holds a NUL character"})"},
    {"a {#a}\n", "row.update", R"({"rows":["a"],"persistentId":"/x"})", "a {#a}\n",
     R"({"persistentId":"\"/x\" would be taken for a path"})"},
    {"a {#a}\n", "row.update", R"({"rows":["a"],"persistentId":"(x"})", "a {#a}\n",
     R"({"persistentId":"\"(x\" would be taken for a path"})"},
    {"a {#a}\n", "row.update", R"({"rows":["a"],"persistentId":"@x"})", "a {#a}\n",
     R"({"persistentId":"\"@x\" would be taken for @selection or @focused"})"},
    {"a {#a}\n", "row.update", R"({"rows":["a"],"persistentId":""})", "a {#a}\n",
     R"({"persistentId":"A persistent id cannot be empty"})"},
    {"a {#a}\nb {#b}\n", "row.update", R"({"rows":["a","b"],"text":"x","persistentId":"p"})",
     "persistentId requires exactly one row, but there are 2"},
    {"a\n", "row.update",
     R"({"rows":["/"],"prepend":"x","type":"task","attributes":{"k":"v"},"persistentId":"p"})", "a\n",
     R"({"attributes":"The root has no attributes","persistentId":"The root goes by the outline's own id",)"
     R"("prepend":"The root has no text","type":"The root has no other type"})"},
    // Commands.
    {tree, "command.perform", R"({"ids":["row:delete","row:no-such"]})",
     "ids[1]: " + commands + R"("row:no-such")"},
    {tree, "command.perform", R"({"ids":["row:togle-done"]})",
     "ids[0]: " + commands + R"("row:togle-done" (did you mean "row:toggle-done"?))"},
    {tree, "command.perform", R"({"ids":["undo"]})",
     "ids[0]: " + commands + R"("undo" (did you mean "edit:undo"?))"},
};

/// Every change is one step to undo and to redo; what is refused changes nothing.
TEST_F(Changing, DoesWhatIsAskedOrNothing) {
  const auto rows = [&] {
    const json::Document text{call("outline.get", R"({"format":"vell","rows":true})")};
    return std::regex_replace(*text.root().string(), std::regex("=[0-9-]{10}T[0-9:.]+Z"), "=now");
  };
  int number = 0;
  for (const Change& row : changes) {
    SCOPED_TRACE(std::string(row.method) + row.params);
    server_.open(std::to_string(++number) + "/a.vell",
                 std::string("vell 1\ncreated: 2026-01-01T00:00:00Z\n\n") + row.before);
    ASSERT_EQ(rows(), row.before);
    const std::string answer = call(row.method, row.params);
    if (!answer.starts_with('[') && !answer.starts_with('{')) {
      EXPECT_TRUE(answer.starts_with(row.outcome)) << answer;
      EXPECT_EQ(rows(), row.before);
      continue;
    }
    EXPECT_EQ(rows(), row.outcome);
    EXPECT_EQ(at(answer, answer.starts_with('[') ? "0.fieldErrors" : "deleted"), row.told);
    call("command.perform", R"({"ids":["edit:undo"]})");
    EXPECT_EQ(rows(), row.before);
    call("command.perform", R"({"ids":["edit:redo"]})");
    EXPECT_EQ(rows(), row.outcome);
  }
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

TEST_F(Changing, TheEditorFollowsWhatItIsAskedAndTheRows) {
  server_.open("a.vell", "a\n\tb\n\t\tc\n\td\ne\n");  // 2 a (3 b (4 c), 5 d), 6 e
  EXPECT_EQ(call("editor.update", R"({"selectHead":"3"})"),
            "selectHead: expected selectRow with it, got it alone");
  const struct {
    const char* method;
    const char* params;
    const char* editor;  ///< what is focused, anchor-head and rows of the selection, what is collapsed
  } steps[] = {
      {"editor.get", "{}", "[1] 1-1 [] []"},
      {"editor.update", R"({"focus":"/"})", "[1] 1-1 [] []"},
      // Focus stacks where it goes deeper, and takes the caret along.
      {"editor.update", R"({"focus":"2"})", "[1,2] 3-3 [3] []"},
      {"editor.update", R"({"focus":"3"})", "[1,2,3] 4-4 [4] []"},
      {"command.perform", R"({"ids":["focus:out"]})", "[1,2] 3-3 [3] []"},
      {"editor.update", R"({"focus":"6"})", "[1,6] 6-6 [6] []"},
      {"editor.update", R"({"focus":"/"})", "[1] 6-6 [6] []"},
      {"command.perform", R"({"ids":["focus:out"]})", "[1] 6-6 [6] []"},
      // A selection outside of it leads out.
      {"editor.update", R"({"selectRow":"5","selectHead":"3"})", "[1] 5-3 [3,4,5] []"},
      {"editor.update", R"({"focus":"3"})", "[1,3] 4-4 [4] []"},
      {"editor.update", R"({"selectRow":"5","selectHead":"4"})", "[1] 5-4 [4,5] []"},
      // Only rows with children fold.
      {"editor.update", R"({"collapse":["3","2","2","6","/"]})", "[1] 5-4 [4,5] [2,3]"},
      // The focus changes first, the selection last; a fault changes nothing.
      {"editor.update", R"({"selectRow":"4","selectHead":"3","focus":"2","expand":["3"]})",
       "[1,2] 4-3 [3,4] [2]"},
      {"editor.update", R"({"selectRow":"@focused"})", "[1,2] 2-2 [2] [2]"},
      {"editor.update", R"({"focus":"5","selectRow":"99"})", "[1,2] 2-2 [2] [2]"},
      // Rows that go.
      {"editor.update", R"({"focus":"2","selectRow":"3","selectHead":"4"})", "[1,2] 3-4 [3,4] [2]"},
      {"row.delete", R"({"rows":["2"]})", "[1] 6-6 [6] []"},
      {"row.delete", R"({"rows":["6"]})", "[1] 1-1 [] []"},
  };
  for (const auto& [method, params, editor] : steps) {
    call(method, params);
    const std::string now = call("editor.get");
    EXPECT_EQ(at(now, "focused") + " " + at(now, "selection.anchor") + "-" + at(now, "selection.head") + " " +
                  at(now, "selection.rows") + " " + at(now, "collapsed"),
              editor)
        << method << params;
  }
}

}  // namespace
}  // namespace vell::headless
