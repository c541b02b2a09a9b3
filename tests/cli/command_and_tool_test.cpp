// A command and the tool of the same purpose ask the application for the same thing.
#include <gtest/gtest.h>

#include "tests/cli/run.h"
#include "tests/tools/host.h"

namespace vell::cli {
namespace {

using tests::FakeApplication;

std::string withoutId(const std::string& request) { return request.substr(request.find(',')); }

/// What the application is asked apart from the events that a server follows.
std::string lastRequest(const FakeApplication& application) {
  std::string last;
  for (const std::string& request : application.requests()) {
    if (request.find("documents.observe") == std::string::npos) last = withoutId(request);
  }
  return last;
}

TEST(CommandAndTool, SendTheSameRequest) {
  struct Row {
    const char* command;
    const char* tool;
    const char* arguments;
  };
  const Row rows[] = {
      {"get outline --refs //task 12 -o markdown --shape flat --outline o", "vell_get_outline",
       R"({"refs":["//task","12"],"output":"markdown","shape":"flat","outline":"o"})"},
      {"get outline rows 3", "vell_get_outline", R"({"refs":["3"],"rows":true})"},
      {"get outlines", "vell_get_outlines", "{}"},
      {"get editors", "vell_get_editors", "{}"},
      {"get editor --editor E", "vell_get_editor", R"({"editor":"E"})"},
      {"get commands", "vell_get_commands", "{}"},
      {"create outline", "vell_create_outline", "{}"},
      {"create outline -f opml", "vell_create_outline", R"({"format":"opml"})"},
      {"create row --text '- é' --parent 3 --position 2", "vell_create_row",
       R"({"markdown":"- é","parent":"3","position":2})"},
      {"create row --text a --before b --after c --outline o", "vell_create_row",
       R"({"markdown":"a","before":"b","after":"c","outline":"o"})"},
      {"create rows -f - --parent 3", "vell_create_rows", R"({"markdown":"a\n\tb\n","parent":"3"})"},
      {"update rows 7 --text '[{\"string\":\"x\"}]' --append b --attr k=v --unset gone", "vell_update_rows",
       R"({"rows":["7"],"text":[{"string":"x"}],"append":"b","attributes":{"k":"v","gone":null}})"},
      {"update rows 7 --prepend b --type hr --persistent-id p --outline o", "vell_update_rows",
       R"({"rows":["7"],"prepend":"b","type":"hr","persistentId":"p","outline":"o"})"},
      {"move rows 1 2 --to 3 --position start", "vell_move_rows",
       R"({"rows":["1","2"],"to":"3","position":"start"})"},
      {"move rows 1 --before 3 --outline o", "vell_move_rows",
       R"({"rows":["1"],"before":"3","outline":"o"})"},
      {"delete rows //task", "vell_delete_rows", R"({"rows":["//task"]})"},
      {"update editor --focus 1 --select 2 --select-head 3 --expand 4 --collapse 6", "vell_update_editor",
       R"({"focus":"1","selectRow":"2","selectHead":"3","expand":["4"],"collapse":["6"]})"},
      {"close outline --discard --outline o", "vell_close_outline", R"({"discard":true,"outline":"o"})"},
      {"close outline", "vell_close_outline", "{}"},
      {"evaluate commands --editor E a b", "vell_evaluate_commands", R"({"editor":"E","ids":["a","b"]})"},
      {"evaluate script -f - --input i", "vell_evaluate_script", R"({"script":"a\n\tb\n","input":"i"})"},
  };
  const tests::TemporaryHome home;
  FakeApplication application(FakeApplication::result("null"));
  tools::tests::Host host;
  host.initialize();
  for (const Row& row : rows) {
    EXPECT_EQ(run(row.command, "a\n\tb\n").status, 0) << row.command;
    const std::string asked = lastRequest(application);
    EXPECT_EQ(host.call(row.tool, row.arguments), "null") << row.tool;
    EXPECT_EQ(lastRequest(application), asked) << row.command;
  }
}

}  // namespace
}  // namespace vell::cli
