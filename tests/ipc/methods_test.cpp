#include <gtest/gtest.h>

#include "ipc/methods.h"

namespace vell::ipc {
namespace {

const RowUpdate update{.rows = {"1", "@focused"},
                       .text = "**x**",
                       .append = StyledRuns{R"([{"attrs":{"em":""},"string":"y"}])"},
                       .prepend = "",
                       .attributes = {{{"color", "red"}, {"due", std::nullopt}}}};

TEST(Methods, SortTheirParamsAndLeaveOutWhatIsAbsent) {
  const std::pair<std::string, std::string> cases[] = {
      {OutlineList{}.toJson(), ""},
      {OutlineClose{}.toJson(), "{}"},
      {OutlineClose{.discard = true}.toJson(), R"({"discard":true})"},
      {OutlineGet{.format = "json"}.toJson(), R"({"format":"json","rows":false,"shape":"tree"})"},
      {OutlineGet{.rowRefs = std::vector<std::string>{}, .format = "txt", .rows = true}.toJson(),
       R"({"format":"txt","rowRefs":[],"rows":true,"shape":"tree"})"},
      {OutlineFindByPath{"/\xC3\xA9/\"\n"}.toJson(), "{\"path\":\"/\xC3\xA9/\\\"\\n\"}"},
      {EditorUpdate{.selectRow = "2", .expand = {{"4"}}, .collapse = {{"5", "6"}}}.toJson(),
       R"({"collapse":["5","6"],"expand":["4"],"selectRow":"2"})"},
      {CommandPerform{.ids = {"a", "b"}}.toJson(), R"({"ids":["a","b"]})"},
      {ScriptEvaluate{.script = "1", .input = ""}.toJson(), R"({"input":"","script":"1"})"},
      {RowCreateMany{.markdown = "a\nb", .place = {.parent = "p", .after = "a"}}.toJson(),
       R"({"after":"a","markdown":"a\nb","parent":"p"})"},
      {update.toJson(),
       R"({"append":[{"attrs":{"em":""},"string":"y"}],"attributes":{"color":"red","due":null},"prepend":"",)"
       R"("rows":["1","@focused"],"text":"**x**"})"},
      {OutlineObserve{.format = "session"}.toJson(),
       R"({"format":"session","path":"//*","rows":false,"shape":"tree"})"},
  };
  for (const auto& [actual, expected] : cases) EXPECT_EQ(actual, expected);
}

TEST(Methods, NameTheArgumentThatIsNotUtf8) {
  const std::string bad = "a\xFF";
  const std::pair<std::function<std::string()>, std::string> cases[] = {
      {[&] {
         return RowDelete{.rows = {"1", bad}}.toJson();
       },
       "\"rows[1]\""},
      {[&] { return OutlineFindByPath{.path = bad}.toJson(); }, "\"path\""},
      {[&] {
         return RowUpdate{.rows = {}, .attributes = {{{"due", bad}}}}.toJson();
       },
       "\"attributes.due\""},
      {[&] {
         return RowUpdate{.rows = {}, .attributes = {{{bad, "x"}}}}.toJson();
       },
       "\"attributes.a\xEF\xBF\xBD\""},
  };
  for (const auto& [build, name] : cases) {
    try {
      ADD_FAILURE() << name << " was taken: " << build();
    } catch (const ParamsError& error) {
      EXPECT_EQ(error.what(), "The argument " + name + " is not valid UTF-8.");
    }
  }
}

}  // namespace
}  // namespace vell::ipc
