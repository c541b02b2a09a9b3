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
    const Ended ended = Process(vellPath(), {"open", "outline", file, "--timeout", "60"}).wait();
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

}  // namespace
}  // namespace vell::tests
