// What is offered at the end of a command line, and how each shell is told.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/cli/run.h"
#include "tests/support/fake_application.h"
#include "tests/support/temporary_directory.h"

namespace vell::cli {
namespace {

using tests::FakeApplication;

constexpr const char* outlines = R"json([
{"displayName":"groceries.vell","fileURL":null,"persistentId":"groc-1"},
{"displayName":"$(reboot)\n\t\u0007 \"it's\" `x` and a name that goes on and on beyond a line","fileURL":null,"persistentId":"9F"},
{"displayName":"x","fileURL":null,"persistentId":"a\u001bb"},
{"displayName":"x","fileURL":null,"persistentId":"a\u202eb"}])json";
constexpr const char* rows = R"json([
{"id":1,"persistentId":"week","type":"heading","text":[{"string":"This "},{"string":"week"}]},
{"id":2,"type":"task","text":[]},
{"id":3,"persistentId":"rule","type":"hr","text":[],"attributes":{"shop":"market","due":"2026-05-04"}},
{"id":4,"persistentId":"$(reboot)","type":"task","text":[],"attributes":{"shop":"the \"Inn\""}},
{"id":5,"persistentId":"-x","type":"task","text":[]},
{"id":6,"persistentId":"two\nlines","type":"task","text":[]}])json";

FakeApplication::Reply answer(const std::string& request) {
  // One line, as the application answers.
  const auto result = [](std::string json) {
    std::replace(json.begin(), json.end(), '\n', ' ');
    return FakeApplication::result(json);
  };
  const auto asks = [&](const char* part) { return request.find(part) != std::string::npos; };
  if (asks("outline.list")) return result(outlines);
  if (asks("editor.list"))
    return FakeApplication::result(R"([{"id":"E1","outlineId":"9F"},{"id":"E2","outlineId":"?"}])");
  if (asks("command.list")) return FakeApplication::result(R"([{"id":"edit:undo"},{"id":"edit:redo"}])");
  if (asks(R"("outline":"none")")) return FakeApplication::error(-32000, "No such outline");
  if (asks(R"("outline":"groceries.vell")"))
    return FakeApplication::error(-32000, "No outline groceries.vell");
  if (asks(R"("outline":"groc-1")"))
    return FakeApplication::result(R"([{"id":1,"persistentId":"o","text":[{"string":"First\nlast"}]}])");
  return result(rows);
}

std::string joined(std::string lines) {
  if (lines.ends_with('\n')) lines.pop_back();
  std::replace(lines.begin(), lines.end(), '\n', '|');
  return lines;
}

/// What bash inserts for one of the words, `|` between them; "files" where it completes these. It replaces
/// what stands behind an open quote, or else behind the last sign that separates words.
std::string offered(const std::string& line) {
  const std::size_t quote = line.find_first_of("'\"");
  const std::string replaced =
      line.substr((quote == std::string::npos ? line.find_last_of(" =:") : quote) + 1);
  const Outcome outcome = run(ArgumentList{"--complete", "bash", line, replaced, "37"});
  EXPECT_EQ(outcome.err, "");
  return outcome.status == 1 ? "files" : joined(outcome.out);
}

TEST(Completion, OffersWhatMayStandThere) {
  const tests::TemporaryHome home;
  const FakeApplication application(answer);
  const std::pair<const char*, const char*> cases[] = {
      // Commands and options.
      {"vell g", "get "},
      {"A=1 vell he", "help "},
      {"vell help get outl", "outline |outlines "},
      {"vell get help outlines -", "--pretty |--version |--help "},
      {"vell get outline r", "rows |rule "},
      {"vell get outline @f rows @", "@selection |@focused "},
      {"vell get outlines ", "--pretty |--version |--help "},
      {"vell get outlines x -- ", ""},
      {"vell get outline -o json --sh", "--shape "},
      {"vell --gen", "--generate-completion-script "},
      {"vell --comp", ""},
      {"vell gte outl", ""},
      // Values from a list, behind the option or attached to it.
      {"vell --generate-completion-script z", "zsh "},
      {"vell get outline -o m", "markdown "},
      {"vell get outline --output op", "opml "},
      {"vell get outline -om", "-omarkdown "},
      {"vell get outline --shape=f", "flat "},
      {"vell get outline --pretty=", ""},
      {"vell create row --position ", "start |end "},
      {"vell update rows x --type o", "ordered "},
      // Free text, and files.
      {"vell update rows --text ", ""},
      {"vell create row --text=gr", ""},
      {"vell open outline gr", "files"},
      {"vell open outline groceries.vell ", "--timeout |--pretty |--version |--help "},
      {"vell create rows --file=gr", "files"},
      {"vell evaluate script -f ", "files"},
      // What is open.
      {"vell get outline --outline ", "groc-1 |9F "},
      {"vell close outline --outline=9", "9F "},
      {"vell get outline --outline groce", "groceries.vell "},
      {"vell get editor --editor ", "E1 |E2 "},
      {"vell evaluate commands edit:u", "undo "},
      {"vell evaluate commands edit:undo 'edit:r", "edit:redo"},
      // Rows.
      {"vell get outline --refs week ", "@selection |@focused |week |rule |\\$\\(reboot\\) "},
      {"vell get outline --refs week --out", "--outline |--output "},
      {"vell move rows week --to $", "\\$\\(reboot\\) "},
      {"vell delete rows '", "@selection|@focused|week|rule|$(reboot)"},
      {"vell delete rows \"", "@selection|@focused|week|rule|\\$(reboot)"},
      {"vell delete rows --outline groc-1 o", "o "},
      {"vell delete rows --outline groceries.vell o", "o "},
      {"vell delete rows --outline=none ", "@selection |@focused "},
      {"vell delete rows -- w", "week "},
      // Paths.
      {"vell delete rows //he", "//heading "},
      {"vell get outline //task\\ @s", "@shop "},
      {"vell get outline '//task @",
       "//task @due|//task @shop|//task @id|//task @type|//task @text|//task @created|//task @modified"},
      {"vell get outline '//* @shop = \"", "//* @shop = \"market\"|//* @shop = \"the \\\"Inn\\\"\""},
      {"vell observe outline 'anc", "ancestor-or-self::|ancestor::"},
      {"vell observe outline --path //ta", "//task "},
      // Attributes.
      {"vell update rows --attr s", "shop="},
      {"vell update rows --attr shop=", "market |the\\ \\\"Inn\\\" "},
      {"vell update rows --unset d", "due "},
  };
  for (const auto& [line, words] : cases) EXPECT_EQ(offered(line), words) << line;
}

TEST(Completion, TellsEachShellInItsWay) {
  const tests::TemporaryHome home;
  const FakeApplication application(answer);
  const std::string shown = R"-($(reboot)? ? "it's" `x` and a name that goes on and on beyond a…)-";
  const std::pair<ArgumentList, std::string> cases[] = {
      {{"zsh", "vell close outline --outline "}, "groc-1\tgroc-1  -- groceries.vell|9F\t9F      -- " + shown},
      {{"fish", "vell close outline --outline "}, "groc-1\tgroceries.vell|9F\t" + shown},
      {{"bash", "vell close outline --outline ", "", "9"},
       "groc-1  (groceries.vell)|9F      (" + shown + ")"},
      {{"bash", "vell close outline --outline '", "", "9"}, "groc-1|9F"},
      {{"bash", "vell close outline --outline ", ""}, "groc-1  (groceries.vell)|9F      (" + shown + ")"},
      {{"bash", "vell close outline --outline g", "g", "9"}, "groc-1 "},
      {{"bash", "vell close outline --outline ", "", "42"}, "groc-1 |9F "},
      {{"bash", "vell delete rows --outline groceries.vell ", "", "9"},
       "@selection  (The row that holds the caret)|@focused    (The row that the editor is focused into)|"
       "o           (First)"},
      {{"fish", "vell get outline --shape 'it\\'s"}, "tree\t|flat\t"},
  };
  for (const auto& [question, lines] : cases) {
    ArgumentList arguments = question;
    arguments.insert(arguments.begin(), "--complete");
    EXPECT_EQ(joined(run(arguments).out), lines) << testing::PrintToString(question);
  }
}

TEST(Completion, WithoutAnAnswerOffersWhatIsFixed) {
  const tests::TemporaryHome home;
  const FakeApplication::Reply replies[] = {{""},
                                            {"", true},
                                            {"not JSON\n"},
                                            {"{\"id\":1,\"result\":7}\n"},
                                            {"{\"id\":1,\"result\":[7,{},{\"id\":[]}]}\n"}};
  const std::pair<const char*, const char*> cases[] = {
      {"vell delete rows ", "@selection |@focused "},
      {"vell delete rows '//bod", "//body"},
      {"vell close outline --outline ", ""},
      {"vell get editor --editor ", ""},
      {"vell evaluate commands ", "--editor |--pretty |--version |--help "}};
  for (const auto& [line, words] : cases) EXPECT_EQ(offered(line), words) << line << ", nothing running";
  for (const auto& reply : replies) {
    const FakeApplication application(reply);
    for (const auto& [line, words] : cases) EXPECT_EQ(offered(line), words) << line << ", " << reply.bytes;
  }
}

TEST(Completion, RefusesAQuestionThatIsNone) {
  for (const ArgumentList& question : {ArgumentList{"--complete"},
                                       {"--complete", "tcsh", "vell g"},
                                       {"--complete", "zsh", "vell"},
                                       {"--complete", "zsh", "A=1"}}) {
    const Outcome outcome = run(question);
    EXPECT_EQ(outcome.status, 64) << testing::PrintToString(question);
    EXPECT_EQ(outcome.out + outcome.err, "");
  }
}

}  // namespace
}  // namespace vell::cli
