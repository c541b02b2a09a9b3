#include "headless/script/script_process.h"

#include <gtest/gtest.h>

#include <vector>

namespace vell::headless {
namespace {

/// An application in which no editor is open, and which can do nothing else; it keeps what was logged.
class FakeHost : public ScriptHost {
 public:
  std::string call(const std::string& method, const std::string&) override {
    if (method == "editor.list") return "[]";
    throw std::runtime_error("no such thing: " + method);
  }
  void log(const std::string& line) override { lines.push_back(line); }

  std::vector<std::string> lines;
};

using Time = std::chrono::milliseconds;
/// Only what never ends runs for so long, however busy the machine is.
constexpr Time enough{60'000};
constexpr Time little{200};

std::string run(FakeHost& host, const std::string& source, std::optional<std::string> input = std::nullopt,
                Time time = enough) {
  const ScriptLimits limits{time, std::size_t{160} << 20};
  return runScript(VELL_HEADLESS, {source, std::move(input)}, "1.2 (3)", host, limits);
}

std::string failure(FakeHost& host, const std::string& source, Time time) {
  try {
    return "no failure: " + run(host, source, std::nullopt, time);
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
    FakeHost host;
    EXPECT_EQ(run(host, row.source, "ab"), row.json) << row.source;
  }
}

TEST(Script, NamesWhatStoppedIt) {
  const struct {
    const char* source;
    const char* message;
    Time time = enough;
  } rows[] = {
      {"\n\nfoo.bar", "ReferenceError: Can't find variable: foo (line 3)"},
      {"throw {a: 1}", R"({"a":1})"},
      {"throw 'no'", "Uncaught no"},
      {"let 1", "SyntaxError: Unexpected number '1'"},
      {"\nvell.outlines", "Error: no such thing: outline.list (line 2)"},
      {"while (true) {}", "The script ran out of time and was stopped.", little},
      {"try { while (true) {} } catch (e) {}", "The script ran out of time and was stopped.", little},
      {"async () => { for (;;) await null }", "The script ran out of time and was stopped.", little},
      {"const all = []; for (;;) all.push(new Array(1e6).fill(1.5))",
       "The script used more than 160 MB of memory and was stopped."},
      {"async () => { await null; throw new Error('late') }", "Error: late (line 1)"},
      {"Promise.reject('no')", "Uncaught no"},
      {"new Promise(() => {})", "The script's promise never settled."},
      {"const a = {}; a.a = a; a", "TypeError: JSON.stringify cannot serialize cyclic structures."},
  };
  for (const auto& row : rows) {
    FakeHost host;
    const std::string said = failure(host, row.source, row.time);
    EXPECT_EQ(said.rfind(row.message, 0), 0u) << row.source << ": " << said;
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
