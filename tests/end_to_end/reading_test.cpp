#include <gtest/gtest.h>

#include "tests/end_to_end/application.h"

namespace vell::tests {
namespace {

TEST(Reading, ASampleInItsOwnFormatIsItsFileHoweverItIsNamed) {
  const TemporaryHome home;
  const Application application(copySamples(home));
  const std::pair<const char*, const char*> rows[] = {
      {"groceries.vell", "vell"},
      {"project-plan.md", "markdown"},
      {"reading-list.opml", "opml"},
      {"notes.txt", "txt"},
  };
  for (const auto& [sample, format] : rows) {
    for (const std::string& name : {std::string(sample), home / sample})
      EXPECT_EQ(printed({"get", "outline", "--outline", name, "-o", format}), contentOf(home / sample) + "\n")
          << name;
  }
}

TEST(Reading, RowsByReference) {
  const TemporaryHome home;
  const Application application(copySamples(home));
  const struct {
    std::vector<std::string> arguments;
    const char* printed;
  } rows[] = {
      {{"rows", "-o", "txt", "--shape", "flat", "milk", "week"}, "This week\nMilk\n\n"},
      {{"rows", "-o", "txt", "@selection"}, "This week\n\n"},
      {{"rows", "-o", "txt", "2"}, "This week\n\n"},
      {{"-o", "txt", "rows", "//task @shop"}, "A head of lettuce\nBread from the bakery, not sliced\n\n"},
      {{"-o", "txt", "--refs", "milk", "--", "bread"}, "Bread from the bakery, not sliced\nMilk\n\n"},
  };
  printed({"update", "editor", "--outline", "groceries.vell", "--select", "week"});
  for (const auto& row : rows) {
    std::vector<std::string> arguments = {"get", "outline", "--outline", "groceries.vell"};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    EXPECT_EQ(printed(arguments), row.printed) << testing::PrintToString(row.arguments);
  }
}

TEST(CommandLine, StatusesOfHelpVersionAndUsage) {
  const TemporaryHome home;
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char* output;
    const char* error;
  } rows[] = {
      {{}, 0, "USAGE\n  vell ", ""},
      {{"--version"}, 0, "0.1.0 (1)\n", ""},
      {{"gte", "outlines"}, 64, "", "'get'"},
  };
  for (const auto& row : rows) {
    const Ended ended = vell(row.arguments);
    EXPECT_EQ(ended.status, row.status) << testing::PrintToString(row.arguments);
    EXPECT_NE(ended.output.find(row.output), std::string::npos) << ended.output;
    EXPECT_NE(ended.error.find(row.error), std::string::npos) << ended.error;
  }
}

}  // namespace
}  // namespace vell::tests
