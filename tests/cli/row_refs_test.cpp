#include "cli/entry.h"

#include <gtest/gtest.h>

#include "tests/cli/run.h"

namespace vell::cli {
namespace {

struct Case {
  const char* typed;
  const char* rewritten;
};

TEST(RowRefs, AreCollectedBehindTheOptionThatTakesThem) {
  const Case cases[] = {
      // Nothing to rewrite.
      {"", ""},
      {"get", "get"},
      {"get outline", "get outline"},
      {"get outlines 12", "get outlines 12"},
      {"create rows 12", "create rows 12"},
      {"update outline 12", "update outline 12"},
      {"--pretty get outline 12", "--pretty get outline 12"},
      // References anywhere among the options.
      {"get outline 12 --output json @focused", "get outline --output json --refs 12 @focused"},
      {"get outline -o markdown @selection", "get outline -o markdown --refs @selection"},
      {"get outline 3 7 /a/b", "get outline --refs 3 7 /a/b"},
      {"get outline --shape flat //task", "get outline --shape flat --refs //task"},
      {"get outline --pretty 3", "get outline --pretty --refs 3"},
      {"get outline --output=json 3", "get outline --output=json --refs 3"},
      {"get outline -", "get outline --refs -"},
      {"get outline ''", "get outline --refs ''"},
      {"observe outline /x", "observe outline --path /x"},
      {"observe outline --path /x", "observe outline --path /x"},
      {"observe outline -o opml /x --shape flat", "observe outline -o opml --shape flat --path /x"},
      // An explicit list keeps its values.
      {"get outline --refs a - b --pretty", "get outline --refs a - b --pretty"},
      {"get outline 1 --refs a b --pretty 2", "get outline --refs a b --pretty --refs 1 2"},
      {"get outline --refs", "get outline --refs"},
      {"get outline --refs --pretty 2", "get outline --refs --pretty --refs 2"},
      // Everything behind "--" is a reference.
      {"get outline --refs a b -- c", "get outline --refs a b --refs c"},
      {"get outline -- -o --refs", "get outline --refs=-o --refs=--refs"},
      {"get outline 1 -- -- 2 3", "get outline --refs 1 --refs=-- --refs 2 3"},
      {"observe outline -- -x", "observe outline --path=-x"},
      {"get outline --", "get outline"},
      // An option that takes a value takes whatever follows.
      {"get outline --outline --pretty 3", "get outline --outline --pretty --refs 3"},
      {"get outline --outline -- 3", "get outline --outline -- --refs 3"},
      {"get outline 3 --outline", "get outline --outline --refs 3"},
      // `rows` in front of all references is the command.
      {"get outline rows 12", "get outline rows 12"},
      {"get outline rows --shape flat 4", "get outline rows --shape flat 4"},
      {"get outline -o json rows 12", "get outline -o json rows 12"},
      {"observe outline rows //task", "observe outline rows //task"},
      {"get outline 12 rows", "get outline --refs 12 rows"},
      {"get outline -- rows", "get outline --refs rows"},
      {"get outline --refs rows 2", "get outline --refs rows 2"},
  };
  for (const auto& [typed, rewritten] : cases) {
    EXPECT_EQ(Vell::preprocessOutlineRefs(words(typed)), words(rewritten)) << typed;
  }
}

TEST(RowRefs, OptionSpansCoverTheirValues) {
  const ArgumentList arguments = words("x --a 1 --m 1 - 2 --f - -- --a");
  const OptionNames one{"--a"}, many{"--m"};
  const std::optional<std::size_t> ends[] = {{}, 3, {}, 7, {}, {}, {}, 8, {}, {}, 11, {}};
  for (std::size_t i = 0; i < std::size(ends); ++i) {
    EXPECT_EQ(optionSpan(i, arguments, one, many), ends[i]) << "at " << i;
  }
}

}  // namespace
}  // namespace vell::cli
