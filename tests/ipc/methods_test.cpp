#include <gtest/gtest.h>

#include "ipc/methods.h"

namespace vell::ipc {
namespace {

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
