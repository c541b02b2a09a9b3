#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include "tests/end_to_end/application.h"
#include "tests/support/bundle.h"

namespace vell::tests {
namespace {

namespace fs = std::filesystem;

/// An installed bundle of its own: opening a file with its `vell` starts its application.
class InstalledBundle {
 public:
  InstalledBundle()
      : bundle_("echo $$ >$dir/id.new && mv $dir/id.new $dir/id\nexec '" VELL_HEADLESS "' \"$@\"\n") {
    fs::create_directory(bundle_.path() + "/Contents/Helpers");
    fs::copy_file(VELL, vellPath());
  }
  ~InstalledBundle() {
    if (started_) ::kill(std::stoi(bundle_.await("id")), SIGKILL);
  }

  Ended open(const std::string& file) {
    const Ended ended = Process({vellPath(), "open", "outline", file, "--timeout", "60"}).wait();
    started_ = ended.status == 0;
    return ended;
  }

 private:
  std::string vellPath() const { return bundle_.path() + "/Contents/Helpers/vell"; }

  Bundle bundle_;
  bool started_ = false;
};

TEST(Changing, AnOutlineFromNothingToItsFile) {
  const TemporaryHome home;
  const std::string file = home.write("plan.md", "");
  InstalledBundle bundle;
  EXPECT_EQ(vell({"create", "row", "--text", "x"}).status, 1);
  const Ended opened = bundle.open(file);
  ASSERT_EQ(opened.status, 0) << opened.error;
  EXPECT_NE(opened.output.find("\"displayName\":\"plan.md\""), std::string::npos) << opened.output;

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

  const std::string content = read(file);
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

TEST(Changing, AnUntitledOutlineIsThereAgain) {
  const TemporaryHome home;
  {
    Application application;
    printed({"create", "outline"});
    printed({"create", "row", "--text", "kept"});
    EXPECT_EQ(application.stop().status, 0);
  }
  const Application application;
  EXPECT_EQ(printed({"get", "outline", "-o", "txt"}), "kept\n\n");
}

TEST(Changing, CreatingAtAPath) {
  const TemporaryHome home;
  const std::string file = home / "new.vell";
  const Ended away = vell({"create", "outline", file});
  EXPECT_EQ(away.status, 1);
  EXPECT_EQ(away.error.find("Error: Vell.app must be running for CLI/MCP access.\n"), 0U) << away.error;
  EXPECT_FALSE(fs::exists(file));
  const Application application;
  EXPECT_NE(printed({"create", "outline", file}).find("\"displayName\":\"new.vell\""), std::string::npos);
  EXPECT_TRUE(read(file).starts_with("vell 1\n"));
  EXPECT_EQ(vell({"create", "outline", file}).error, "Error: File already exists: " + file + "\n");
}

TEST(Changing, FailuresSayWhatToDo) {
  const TemporaryHome home;
  const Application application(copySamples(home));
  const std::string before = printed({"get", "outline"});
  const struct {
    std::vector<std::string> arguments;
    int status;
    std::string error;
  } rows[] = {
      {{"open", "outline", home / "missing.vell"}, 1, "Error: File not found: " + (home / "missing.vell")},
      {{"create", "rows", "--file", home / "missing.md"}, 1, "No such file or directory"},
      {{"update", "rows", "milk", "--attr", "novalue"}, 64, "Error: "},
      {{"move", "rows", "milk"}, 64, "Error: Specify --to, --before, or --after."},
      {{"move", "rows", "week", "--to", "milk"}, 1, "Error: Vell error "},
      {{"delete", "rows", "nosuch"}, 1, "nosuch"},
      {{"evaluate", "commands", "edit:undo", "no:such"}, 1, "no:such"},
  };
  for (const auto& row : rows) {
    const Ended ended = vell(row.arguments);
    EXPECT_EQ(ended.status, row.status) << testing::PrintToString(row.arguments);
    EXPECT_NE(ended.error.find(row.error), std::string::npos) << ended.error;
    EXPECT_EQ(ended.output, "");
  }
  EXPECT_EQ(printed({"get", "outline"}), before);
}

}  // namespace
}  // namespace vell::tests
