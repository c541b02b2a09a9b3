#include "headless/script/script_process.h"

#include <gtest/gtest.h>

#include <map>
#include <vector>

namespace vell::headless {
namespace {

/// Answers methods from a table and keeps what was asked and logged.
class FakeHost : public ScriptHost {
 public:
  explicit FakeHost(std::map<std::string, std::string> answers = {}) : answers_(std::move(answers)) {}

  std::string call(const std::string& method, const std::string& params) override {
    calls.push_back(method + " " + params);
    const auto answer = answers_.find(method);
    if (answer == answers_.end()) throw std::runtime_error("no such thing: " + method);
    return answer->second;
  }
  void log(const std::string& line) override { lines.push_back(line); }

  std::vector<std::string> calls;
  std::vector<std::string> lines;

 private:
  std::map<std::string, std::string> answers_;
};

std::string run(FakeHost& host, const std::string& source, std::optional<std::string> input = std::nullopt) {
  const ScriptLimits limits{std::chrono::milliseconds(1000), std::size_t{160} << 20};
  return runScript(VELL_HEADLESS, {source, std::move(input)}, "1.2 (3)", host, limits);
}

std::string failure(FakeHost& host, const std::string& source) {
  try {
    return "no failure: " + run(host, source);
  } catch (const ScriptError& error) {
    return error.what();
  }
}

TEST(Script, ReturnsItsValueAsJson) {
  const struct {
    const char* source;
    const char* json;
  } rows[] = {
      {"1 + 2", "3"},
      {"'ü\"\\n'", R"("ü\"\n")"},
      {"({a: [1, null]})", R"({"a":[1,null]})"},
      {"undefined", "null"},
      {"let x = 1; x?.y", "null"},
      {"vell.version", "\"1.2 (3)\""},
      {"() => 7", "7"},
      {"(input) => input.length", "2"},
      {"function f(text) { return text + '!' }\nf", R"("ab!")"},
      {"(() => vell.frontmostOutlineEditor?.selection?.word)()", "null"},
      {"Promise.resolve({a: 1})", R"({"a":1})"},
      {"async (input) => { const n = await Promise.resolve(input.length); return n + 1 }", "3"},
      {"new Promise((resolve) => resolve())", "null"},
  };
  for (const auto& row : rows) {
    FakeHost host(std::map<std::string, std::string>{{"editor.list", "[]"}});
    EXPECT_EQ(run(host, row.source, "ab"), row.json) << row.source;
  }
}

TEST(Script, NamesWhatStoppedIt) {
  const struct {
    const char* source;
    const char* message;
  } rows[] = {
      {"\n\nfoo.bar", "ReferenceError: Can't find variable: foo (line 3)"},
      {"throw {a: 1}", R"({"a":1})"},
      {"throw 'no'", "Uncaught no"},
      {"let 1", "SyntaxError: Unexpected number '1'"},
      {"\nvell.outlines", "Error: no such thing: outline.list (line 2)"},
      {"while (true) {}", "The script ran out of time and was stopped."},
      {"try { while (true) {} } catch (e) {}", "The script ran out of time and was stopped."},
      {"async () => { for (;;) await null }", "The script ran out of time and was stopped."},
      {"const all = []; for (;;) all.push(new Array(1e6).fill(1.5))",
       "The script used more than 160 MB of memory and was stopped."},
      {"async () => { await null; throw new Error('late') }", "Error: late (line 1)"},
      {"Promise.reject('no')", "Uncaught no"},
      {"new Promise(() => {})", "The script's promise never settled."},
      {"const a = {}; a.a = a; a", "TypeError: JSON.stringify cannot serialize cyclic structures."},
  };
  for (const auto& row : rows) {
    FakeHost host;
    EXPECT_EQ(failure(host, row.source).rfind(row.message, 0), 0u) << failure(host, row.source);
  }
}

TEST(Script, SpeaksToTheApplicationInItsOwnMethods) {
  const std::string outlines = R"([{"persistentId":"o1","displayName":"Plan","fileURL":null}])";
  const std::string row =
      R"({"id":7,"type":"task","text":[{"string":"Buy "},{"string":"milk","attrs":{"em":""}}]})";
  const std::map<std::string, std::string> answers = {
      {"outline.list", outlines},
      {"outline.get", "[" + row + "]"},
      {"row.update", "[{\"row\":" + row + "}]"},
      {"row.create", row},
      {"row.move", "[" + row + "]"},
      {"row.delete", R"({"deleted":2})"},
      {"script.parent", "null"},
      {"editor.list", R"([{"id":"e1","outlineId":"o1"}])"},
      {"editor.get",
       R"({"id":"e1","selection":{"anchor":7,"head":7,"rows":[7],"text":"milk run"},"collapsed":[]})"},
      {"command.perform", R"([{"id":"row:indent","performed":false}])"},
  };
  const std::string read =
      R"(outline.get {"outline":"o1","format":"session","shape":"flat","rows":true,"rowRefs":)";
  const struct {
    const char* source;
    const char* json;
    std::string lastCall;
  } rows[] = {
      {"vell.frontmostOutline.rows().map(String)", R"(["Buy milk"])", read + "[]}"},
      {"vell.outlines[0].row('//task').type", R"("task")", read + R"(["//task"]})"},
      {"const r = vell.frontmostOutline.row(7); r.text = 'x'; r.parent", "null",
       R"(script.parent {"outline":"o1","row":7})"},
      {"vell.frontmostOutline.row(7).setAttribute('n', 3).id", "7",
       R"(row.update {"outline":"o1","rows":["7"],"attributes":{"n":"3"}})"},
      {"vell.frontmostOutline.createRow('a', {after: vell.frontmostOutline.row(7)}).runs.length", "2",
       R"(row.create {"outline":"o1","markdown":"a","after":"7"})"},
      {"vell.frontmostOutline.row(7).move({to: 3, position: 0}).id", "7",
       R"(row.move {"outline":"o1","rows":["7"],"to":"3","position":"0"})"},
      {"vell.frontmostOutline.deleteRows(7, 'p')", "2", R"(row.delete {"outline":"o1","rows":["7","p"]})"},
      {"vell.frontmostOutlineEditor.selection.word", R"("milk")", R"(editor.get {"editor":"e1"})"},
      {"vell.frontmostOutlineEditor.collapsed", "[]", R"(editor.get {"editor":"e1"})"},
      {"vell.frontmostOutlineEditor.perform('row:indent')[0].performed", "false",
       R"(command.perform {"editor":"e1","ids":["row:indent"]})"},
  };
  for (const auto& expected : rows) {
    FakeHost host(answers);
    EXPECT_EQ(run(host, expected.source), expected.json) << expected.source;
    ASSERT_FALSE(host.calls.empty()) << expected.source;
    EXPECT_EQ(host.calls.back(), expected.lastCall) << expected.source;
  }
}

TEST(Script, LogsToItsHostAndLeavesNothingBehind) {
  FakeHost host;
  run(host, "console.log('a', 1, {}); globalThis.left = 1; 0");
  EXPECT_EQ(host.lines, std::vector<std::string>{"a 1 [object Object]"});
  EXPECT_EQ(run(host, "typeof left"), R"("undefined")");
}

}  // namespace
}  // namespace vell::headless
