#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/cli/run.h"
#include "tests/support/fake_application.h"
#include "tests/support/temporary_directory.h"

namespace vell::cli {
namespace {

struct Case {
  std::string line;
  const char* method;
  /// Null when the request has none.
  const char* params;
};

/// Runs every line against an application that answers null, and compares what it was asked.
void expectRequests(const std::vector<Case>& cases, std::string_view input = "") {
  tests::TemporaryHome home;
  for (const auto& [line, method, params] : cases) {
    tests::FakeApplication application(tests::FakeApplication::result("null"));
    const Outcome outcome = run(line, input);
    EXPECT_EQ(outcome.status, 0) << line << "\n" << outcome.err;
    const std::string expected = std::string(R"({"id":1,"jsonrpc":"2.0","method":")") + method + "\"" +
                                 (params == nullptr ? "" : std::string(",\"params\":") + params) + "}";
    EXPECT_EQ(application.requests(), std::vector<std::string>{expected}) << line;
  }
}

TEST(Requests, OfTheReadCommands) {
  expectRequests({
      {"get outlines", "outline.list", nullptr},
      {"get editors --pretty", "editor.list", nullptr},
      {"--pretty get editors", "editor.list", nullptr},
      {"get commands", "command.list", nullptr},
      {"get editor", "editor.get", "{}"},
      {"get editor --editor E-1", "editor.get", R"({"editor":"E-1"})"},
      {"get outline", "outline.get", R"({"format":"session","rowRefs":[],"rows":false,"shape":"tree"})"},
      {"get outline --refs", "outline.get",
       R"({"format":"session","rowRefs":[],"rows":false,"shape":"tree"})"},
      {"get outline --shape flat //task", "outline.get",
       R"({"format":"session","rowRefs":["//task"],"rows":false,"shape":"flat"})"},
      {"get outline -o markdown 12 --outline o1 --refs=-x", "outline.get",
       R"({"format":"markdown","outline":"o1","rowRefs":["-x","12"],"rows":false,"shape":"tree"})"},
      {"get outline --refs a b --pretty c", "outline.get",
       R"({"format":"session","rowRefs":["a","b","c"],"rows":false,"shape":"tree"})"},
      {"get outline 1 -- -x -- --bogus 2 -o", "outline.get",
       R"({"format":"session","rowRefs":["1","-x","--","--bogus","2","-o"],"rows":false,"shape":"tree"})"},
      {"get outline -ojson --outline=-9", "outline.get",
       R"({"format":"json","outline":"-9","rowRefs":[],"rows":false,"shape":"tree"})"},
      {"get outline rows 3 5", "outline.get",
       R"({"format":"session","rowRefs":["3","5"],"rows":true,"shape":"tree"})"},
      {"get outline rows", "outline.get", R"({"format":"session","rowRefs":[],"rows":true,"shape":"tree"})"},
      {"get outline -o json rows 12", "outline.get",
       R"({"format":"json","rowRefs":["12"],"rows":true,"shape":"tree"})"},
      // References that spell a command, an option's value or a bracketed list stay what they are.
      {"get outline rows get outline rows", "outline.get",
       R"({"format":"session","rowRefs":["get","outline","rows"],"rows":true,"shape":"tree"})"},
      {"get outline rows '[a,b]' - -- -x", "outline.get",
       R"({"format":"session","rowRefs":["[a,b]","-","-x"],"rows":true,"shape":"tree"})"},
  });
}

TEST(Requests, OfTheCommandsThatChangeRows) {
  expectRequests({
      {"create row", "row.create", R"({"markdown":""})"},
      {"create row --text '- item' --parent 3 --position -1", "row.create",
       R"({"markdown":"- item","parent":"3","position":"-1"})"},
      {"create row 'Buy milk' --parent 3", "row.create", R"({"markdown":"Buy milk","parent":"3"})"},
      {"create row '- [ ] Buy milk'", "row.create", R"({"markdown":"- [ ] Buy milk"})"},
      {"create row -- '- [ ] Buy milk'", "row.create", R"({"markdown":"- [ ] Buy milk"})"},
      {"create row a --outline x --outline y --position 1 --position 2", "row.create",
       R"({"markdown":"a","outline":"y","position":"2"})"},
      {"create row --text a --text b", "row.create", R"({"markdown":"b"})"},
      {"create row --text= --before a --after b --outline o", "row.create",
       R"({"after":"b","before":"a","markdown":"","outline":"o"})"},
      {"create row --text --help", "row.create", R"({"markdown":"--help"})"},
      {"update rows --unset color", "row.update", R"({"attributes":{"color":null},"rows":["@selection"]})"},
      {"update rows open close --attr a=b=c --attr a=2 --attr e= --unset a", "row.update",
       R"({"attributes":{"a":null,"e":""},"rows":["open","close"]})"},
      {"update rows 7 --text '[{\"string\":\"x\"}]' --append '[x' --prepend ' [1] '", "row.update",
       R"({"append":"[x","prepend":[1],"rows":["7"],"text":[{"string":"x"}]})"},
      {"update rows 7 --text ' \u00a0\u3000[1]\u2028\n' --append '\u00a0a\u00a0'", "row.update",
       R"({"append":" a ","rows":["7"],"text":[1]})"},
      {"update rows 7 --text '{\"a\":1}' --append ' b '", "row.update",
       R"({"append":" b ","rows":["7"],"text":"{\"a\":1}"})"},
      {"update rows --type hr --persistent-id p --outline o", "row.update",
       R"({"outline":"o","persistentId":"p","rows":["@selection"],"type":"hr"})"},
      {"update editor --focus 1 --select 2 --select-head 3 --expand 4 - 5 --collapse 6 --outline o",
       "editor.update",
       R"({"collapse":["6"],"expand":["4","-","5"],"focus":"1","outline":"o","selectHead":"3","selectRow":"2"})"},
      {"update editor --expand --collapse", "editor.update", "{}"},
      {"move rows 1 2 --to 3 --position start", "row.move",
       R"({"position":"start","rows":["1","2"],"to":"3"})"},
      {"move rows 1 --to 3 --position start --to 4 --position end", "row.move",
       R"({"position":"end","rows":["1"],"to":"4"})"},
      {"move rows --before 3 --outline o", "row.move",
       R"({"before":"3","outline":"o","rows":["@selection"]})"},
      {"move rows move --after 3", "row.move", R"({"after":"3","rows":["move"]})"},
      {"delete rows", "row.delete", R"({"rows":["@selection"]})"},
      {"delete rows //task help --outline o", "row.delete", R"({"outline":"o","rows":["//task","help"]})"},
  });
}

TEST(Requests, OfTheOtherCommands) {
  expectRequests({
      {"create outline", "outline.new", R"({"format":"vell"})"},
      {"create outline -f opml", "outline.new", R"({"format":"opml"})"},
      {"close outline", "outline.close", "{}"},
      {"close outline --discard --outline o", "outline.close", R"({"discard":true,"outline":"o"})"},
      {"evaluate commands row:toggle-done fold:collapse-all", "command.perform",
       R"({"ids":["row:toggle-done","fold:collapse-all"]})"},
      {"evaluate commands --editor E a", "command.perform", R"({"editor":"E","ids":["a"]})"},
  });
}

TEST(Requests, CarryFilesAndStandardInput) {
  const tests::TemporaryDirectory directory;
  const std::string file = directory.write("a b.md", "# Größe\n- x\n");
  expectRequests(
      {
          {"create rows -f '" + file + "' --parent 3", "row.createMany",
           R"({"markdown":"# Größe\n- x\n","parent":"3"})"},
          {"create rows --file -", "row.createMany", R"({"markdown":"typed\n"})"},
          {"evaluate script -f - --input -x", "script.evaluate", R"({"input":"-x","script":"typed\n"})"},
      },
      "typed\n");
}

using tests::FakeApplication;

/// An application in which every outline looked for is open.
FakeApplication::Reply answerOpening(const std::string& request) {
  if (request.find("outline.newContent") != std::string::npos) return FakeApplication::result(R"("# new\n")");
  return FakeApplication::result(R"({"persistentId":"abc","displayName":"A","fileURL":null})");
}

/// The method and params of a request line.
std::string brief(const std::string& request) {
  const std::size_t start = request.find("\"method\":\"") + 10;
  return request.substr(start, request.size() - start - 1);
}

constexpr const char* summary = "{\"displayName\":\"A\",\"fileURL\":null,\"persistentId\":\"abc\"}\n";

TEST(Requests, OfOpening) {
  tests::TemporaryHome home;
  const std::string file = home.write("a.vell", ""), relative = home / "x/.././a.vell";
  const std::string raise = R"(outline.bringToFront","params":{"outline":"abc"})";
  const std::pair<std::string, std::string> cases[] = {
      {"open outline id:abc", R"(outline.findByPersistentId","params":{"persistentId":"abc"})"},
      {"open outline '" + relative + "' --timeout 0.5",
       R"(outline.findByPath","params":{"path":")" + file + "\"}"},
  };
  for (const auto& [line, find] : cases) {
    FakeApplication application(answerOpening);
    const Outcome outcome = run(line);
    EXPECT_EQ(outcome.out, summary) << line << outcome.err;
    const auto requests = application.requests();
    ASSERT_EQ(requests.size(), 2U) << line;
    EXPECT_EQ(brief(requests[0]), find) << line;
    EXPECT_EQ(brief(requests[1]), raise) << line;
  }
  const Outcome missing = run("open outline " + home.path() + "/none.vell");
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "Error: File not found: " + home.path() + "/none.vell\n");
}

TEST(Requests, OfCreatingAnOutlineAtAPath) {
  const struct {
    std::string arguments, format;
    std::string readAs{};  // where the name says something else
  } cases[] = {
      {"a.md", "markdown"},
      {"a.markdown", "markdown"},
      {"a.VELL", "vell"},
      {".vell", "txt"},
      {"a.json", "json"},
      {"a.OPML", "opml"},
      {"a.doc", "txt"},
      {"a", "txt"},
      {"a.opml -f json", "json", "opml"},
      {"b.MD -f opml", "opml", "markdown"},
      {"b -f markdown", "markdown", "txt"},
      {"b.doc -f opml", "opml"},
      {"b.txt -f vell", "vell"},
  };
  tests::TemporaryHome home;
  for (const auto& [arguments, format, readAs] : cases) {
    const std::string file = home / arguments.substr(0, arguments.find(' '));
    const std::string line = "create outline " + (home / arguments);
    const Outcome away = run(line);
    EXPECT_EQ(away.status, 1) << line;
    EXPECT_EQ(away.err.find("Error: Vell.app must be running"), 0U) << line << away.err;
    EXPECT_NE(access(file.c_str(), F_OK), 0) << line;

    FakeApplication application(answerOpening);
    const Outcome created = run(line);
    EXPECT_EQ(created.out, summary) << line;
    EXPECT_EQ(created.err, readAs.empty() ? ""
                                          : "warning: " + file + " was written as " + format +
                                                " but is read as " + readAs + " because of its name. For " +
                                                format + ", let the name end in ." + format + "\n");
    EXPECT_EQ(brief(application.requests().at(0)),
              "outline.newContent\",\"params\":{\"format\":\"" + format + "\"}");
    EXPECT_EQ(run("create rows -f " + file).status, 0) << line;
    EXPECT_NE(application.requests().back().find(R"("markdown":"# new\n")"), std::string::npos) << line;
    const Outcome again = run(line);
    EXPECT_EQ(again.status, 1) << line;
    EXPECT_EQ(again.err, "Error: File already exists: " + file + "\n") << line;
  }
}

}  // namespace
}  // namespace vell::cli
