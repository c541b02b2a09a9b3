#include <gtest/gtest.h>

#include <map>

#include "json/document.h"
#include "tests/end_to_end/application.h"

namespace vell::tests {
namespace {

/// The samples, served; their outlines' ids by file name.
class Reading : public testing::Test {
 protected:
  Reading() : application_(copySamples(home_)) {
    const json::Document outlines{json::Text(printed({"get", "outlines"}))};
    for (const json::Node& outline : outlines.root().elements()) {
      ids_[*outline.find("displayName")->string()] = *outline.find("persistentId")->string();
    }
  }

  std::string read(const std::string& sample, const std::string& format) {
    return printed({"get", "outline", "--outline", ids_[sample], "-o", format});
  }

  TemporaryHome home_;
  Application application_;
  std::map<std::string, std::string> ids_;
};

TEST_F(Reading, ASampleInItsOwnFormatIsItsFileHoweverItIsNamed) {
  const std::pair<const char*, const char*> rows[] = {
      {"groceries.vell", "vell"},
      {"project-plan.md", "markdown"},
      {"reading-list.opml", "opml"},
      {"notes.txt", "txt"},
  };
  for (const auto& [sample, format] : rows) {
    for (const std::string& name : {ids_[sample], std::string(sample), home_ / sample})
      EXPECT_EQ(printed({"get", "outline", "--outline", name, "-o", format}),
                tests::read(home_ / sample) + "\n")
          << name;
  }
}

TEST_F(Reading, EverySampleInEveryFormatThatIsNotItsOwn) {
  const struct {
    const char *sample, *format, *part;
  } rows[] = {
      {"groceries.vell", "session", "\"persistentId\": \"week\",\n"},
      {"groceries.vell", "session", "\"shop\": \"market\"\n"},
      {"groceries.vell", "json", "\"id\": \"week\",\n"},
      {"groceries.vell", "json", "\"modified\": \"2026-03-04T07:02:55.120Z\""},
      {"groceries.vell", "markdown", "\t- [ ] Potatoes, ==two kilos== {amount=2kg priority=1}\n"},
      {"groceries.vell", "opml", "<outline text=\"This week\" vell-type=\"heading\" vell-id=\"week\">"},
      {"groceries.vell", "txt", "\tBread from the bakery, not sliced\n\t\tClosed on Mondays"},
      {"project-plan.md", "session", "\"title\": \"A garden shed\""},
      {"project-plan.md", "json", "\"strong\": \"\"\n"},
      {"project-plan.md", "vell", "[x] Ask the neighbours {#neighbours with=coffee}\n"},
      {"project-plan.md", "opml", "vell-id=\"shed\""},
      {"project-plan.md", "txt", "\t\t\tPosts, 9 × 9 cm\n\t\t\t\tfour of 2.4 m\n"},
      {"reading-list.opml", "session", "\"author\": \"George Eliot\""},
      {"reading-list.opml", "json", "\"a\": \"https://www.gutenberg.org\""},
      {"reading-list.opml", "vell", "[x] _Middlemarch_ {#middlemarch author=\"George Eliot\" pages=880"},
      {"reading-list.opml", "markdown", "- [Project Gutenberg](https://www.gutenberg.org)\n"},
      {"reading-list.opml", "txt", "Novels\n\tMiddlemarch\n\t\tThe growing good"},
      {"notes.txt", "session", "\"string\": \"about the boat\""},
      {"notes.txt", "json", "\"string\": \"about the boat\""},
      {"notes.txt", "vell", "\nIdeas\n\tA walk along the river"},
      {"notes.txt", "markdown", "\tA walk along the river, upstream this time\n"},
      {"notes.txt", "opml", "<outline text=\"Ideas\">"},
  };
  for (const auto& row : rows) {
    EXPECT_NE(read(row.sample, row.format).find(row.part), std::string::npos)
        << row.sample << " as " << row.format << " lacks " << row.part;
  }
}

TEST_F(Reading, AConvertedSampleOpensAsTheSameOutline) {
  const std::pair<const char*, const char*> formats[] = {
      {"vell", ".vell"}, {"json", ".json"}, {"markdown", ".md"}, {"opml", ".opml"}};
  for (const auto& [sample, id] : ids_) {
    const std::string text = read(sample, "txt");
    for (const auto& [format, extension] : formats) {
      const std::string converted = read(sample, format);
      const TemporaryHome other;
      const Application second({other.write("converted" + std::string(extension), converted)});
      EXPECT_EQ(printed({"get", "outline", "-o", "txt"}), text) << sample << " by way of " << format;
    }
  }
}

TEST_F(Reading, RowsByReference) {
  const std::string outline = ids_["groceries.vell"];
  const struct {
    std::vector<std::string> arguments;
    const char* printed;
  } rows[] = {
      {{"rows", "-o", "txt", "milk"}, "Milk\n\n"},
      {{"rows", "-o", "txt", "milk", "week"}, "This week\n\tMilk\n\n"},
      {{"rows", "-o", "txt", "--shape", "flat", "milk", "week"}, "This week\nMilk\n\n"},
      {{"-o", "txt", "rows", "bread"}, "Bread from the bakery, not sliced\n\n"},
      {{"rows", "-o", "txt", "@selection"}, "This week\n\n"},
      {{"rows", "-o", "txt", "2"}, "This week\n\n"},
      {{"rows", "-o", "txt", "//task @shop"}, "A head of lettuce\nBread from the bakery, not sliced\n\n"},
      {{"-o", "txt", "milk"}, "Milk\n\n"},
      {{"-o", "txt", "--refs", "milk", "--", "bread"}, "Bread from the bakery, not sliced\nMilk\n\n"},
  };
  printed({"update", "editor", "--outline", outline, "--select", "week"});
  for (const auto& row : rows) {
    std::vector<std::string> arguments = {"get", "outline", "--outline", outline};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    EXPECT_EQ(printed(arguments), row.printed) << testing::PrintToString(row.arguments);
  }
}

TEST_F(Reading, ABrokenPathIsShownWithItsFault) {
  const Ended ended = vell({"get", "outline", "//task[["});
  EXPECT_EQ(ended.status, 1);
  EXPECT_NE(ended.error.find("//task[["), std::string::npos) << ended.error;
}

TEST_F(Reading, TheStateOfEditors) {
  EXPECT_NE(printed({"get", "editors"}).find("\"outlineId\":\"" + ids_["groceries.vell"] + "\""),
            std::string::npos);
  EXPECT_NE(printed({"get", "editor"}).find("\"collapsed\":["), std::string::npos);
  EXPECT_NE(printed({"get", "commands"}).find("\"id\":\"row:toggle-done\""), std::string::npos);
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
      {{"--help"}, 0, "OUTPUT FORMATS", ""},
      {{"get"}, 0, "vell get", ""},
      {{"help", "get", "outline"}, 0, "--refs", ""},
      {{"--version"}, 0, "0.1.0 (1)\n", ""},
      {{"gte", "outlines"}, 64, "", "'get'"},
      {{"get", "outline", "-o", "docx"}, 64, "", "Error: "},
      {{"get", "outline", "rows", "--refs", "3"},
       64,
       "",
       "Error: --refs is not supported on `rows`; pass row refs positionally."},
      {{"delete", "rows", "--no-such-option"}, 64, "", "See 'vell delete rows --help'"},
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
