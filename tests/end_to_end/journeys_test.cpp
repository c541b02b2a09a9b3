#include <gtest/gtest.h>

#include <filesystem>

#include "platform/container.h"
#include "tests/end_to_end/application.h"

namespace vell::tests {
namespace {

/// Ends what the test had started.
struct StopAtEnd {
  ~StopAtEnd() { Process(VELL_HEADLESS, {"stop"}).wait(); }
};

TEST(Journeys, AnOutlineFromNothingToItsFile) {
  const TemporaryHome home;
  const std::string file = home.write("plan.md", "");
  const StopAtEnd stop;
  EXPECT_EQ(vell({"create", "row", "--text", "x"}).status, 1);
  const std::string opened = printed({"open", "outline", file, "--timeout", "60"});
  EXPECT_NE(opened.find("\"displayName\":\"plan.md\""), std::string::npos) << opened;

  printed({"create", "rows", "--file", "-"},
          "# Shed {#shed}\n\n- [ ] Timber {#timber}\n\t- Posts\n- [ ] Drill {#drill}\n- Old {#old}\n");
  printed({"create", "row", "--text", "- [ ] Paint {#paint}", "--after", "drill"});
  printed({"update", "rows", "timber", "paint", "--attr", "due=2026-05-04", "--append", ", red"});
  printed({"move", "rows", "paint", "--before", "timber"});
  EXPECT_EQ(printed({"delete", "rows", "old"}), "{\"deleted\":1}\n");
  EXPECT_EQ(printed({"delete", "rows", "timber"}), "{\"deleted\":2}\n");
  printed({"evaluate", "commands", "edit:undo"});
  printed({"update", "editor", "--select", "drill"});
  printed({"evaluate", "commands", "row:toggle-done"});
  EXPECT_EQ(printed({"evaluate", "script", "--file", "-", "--input", "ladder"},
                    "text => vell.frontmostOutline.createRow(text, {after: 'drill'}).text"),
            "\"ladder\"\n");
  EXPECT_EQ(printed({"close", "outline"}), "{\"closed\":true}\n");
  EXPECT_EQ(printed({"get", "outlines"}), "[]\n");

  const std::string content = contentOf(file);
  const std::size_t body = content.find("# Shed");
  ASSERT_NE(body, std::string::npos) << content;
  EXPECT_EQ(content.substr(body),
            "# Shed {#shed}\n"
            "\n"
            "- [ ] Paint, red {#paint due=2026-05-04}\n"
            "- [ ] Timber, red {#timber due=2026-05-04}\n"
            "\t- Posts\n"
            "- [x] Drill {#drill}\n"
            "\n"
            "ladder\n");
}

TEST(Journeys, AFileThatCannotBeOpenedAndOthersThatCan) {
  const TemporaryHome home;
  const std::string list = home.write("a.json", "[1]"), fine = home.write("notes.html", "one\n");
  const Application application;
  EXPECT_EQ(vell({"open", "outline", list, "--timeout", "60"}).error,
            "Error: Vell could not open " + list + ": line 1 (byte 1): expected a row, not a number\n");
  EXPECT_NE(printed({"open", "outline", fine}).find("notes.html"), std::string::npos);
  for (const std::string name : {"new.html", "no-extension"})
    EXPECT_NE(printed({"create", "outline", home / name}).find(name), std::string::npos);
}

TEST(Journeys, AFailureThatNobodyAskedForIsToldByTheNextCommand) {
  const TemporaryHome home;
  const std::string path = home.write("a.txt", "one\n");
  const Application application;
  printed({"open", "outline", path});
  std::filesystem::remove(path);
  std::string told = vell({"create", "row", "--text", "two"}).error;
  for (int i = 0; i < 100 && told.empty(); ++i) told = vell({"get", "outlines"}).error;
  EXPECT_EQ(told.find("Note from Vell: " + path), 0U) << told;
  EXPECT_EQ(vell({"get", "outlines"}).error, "");
  EXPECT_NE(contentOf(platform::containerDirectory() + "/vell.log").find(path), std::string::npos);
}

}  // namespace
}  // namespace vell::tests
