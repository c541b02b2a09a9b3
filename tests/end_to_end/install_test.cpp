#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "tests/end_to_end/application.h"

namespace vell::tests {
namespace {

namespace fs = std::filesystem;

constexpr const char* list = "lib/vell/Vell.app/Contents/Info.plist";
constexpr const char* ours = "<plist><dict><key>VellHeadless</key><string/></dict></plist>";

/// Both programs find their bundle by whatever link they are started, and files stand where shells look.
void checkInstalled(const TemporaryDirectory& place) {
  const std::string version = Process(VELL, {"--version"}).wait().output;
  fs::create_symlink(place / "bin/vell", place / "elsewhere");
  for (const char* program : {"bin/vell", "elsewhere"})
    EXPECT_EQ(Process(place / program, {"--version"}).wait().output, version) << program;
  for (const char* file :
       {"bin/vell-headless", "share/man/man1/vell.1", "share/bash-completion/completions/vell",
        "share/zsh/site-functions/_vell", "share/fish/vendor_completions.d/vell.fish",
        "lib/vell/Vell.app/Contents/Resources/man/man1/vell.1"})
    EXPECT_TRUE(fs::exists(place / file)) << file;
}

/// What the build lists as installed is all there is outside the folder of its own.
void checkUninstalls(const TemporaryDirectory& place) {
  std::istringstream installed(contentOf(std::string(VELL_BUILD) + "/install_manifest.txt"));
  for (std::string file; std::getline(installed, file);) fs::remove(file);
  fs::remove_all(place / "lib/vell");
  for (const char* folder : {"bin", "lib", "share"})
    for (const auto& entry : fs::recursive_directory_iterator(place / folder))
      EXPECT_TRUE(entry.is_directory()) << entry.path();
}

TEST(Install, ReplacesAnEarlierVersionAndNothingElse) {
  struct Row {
    const char* file;
    const char* content;
    const char* link = nullptr;  ///< what bin/vell leads to
    const char* other = nullptr;
  };
  const Row rows[] = {
      {nullptr, nullptr},
      {list, ours, "../lib/vell/Vell.app/Contents/Helpers/vell"},
      {list, "<plist><dict><key>CFBundleIdentifier</key><string>app.vell.Vell</string></dict></plist>",
       nullptr, "lib/vell/Vell.app is another application"},
      {list, "", nullptr, "lib/vell/Vell.app is another application"},
      {"bin/vell", "#!/bin/sh", nullptr, "bin/vell is another program"},
      {list, ours, "/Applications/Vell.app/Contents/Helpers/vell", "bin/vell is another program"},
  };
  for (const auto& [file, content, link, other] : rows) {
    SCOPED_TRACE(other ? other : "replaced");
    const TemporaryDirectory place;
    if (file) place.write(file, content);
    fs::create_directories(place / "bin");
    if (link) fs::create_symlink(link, place / "bin/vell");
    const Ended ended = Process(CMAKE, {"--install", VELL_BUILD, "--prefix", place.path()}).wait();
    ASSERT_EQ(ended.status == 0, other == nullptr) << ended.error;
    if (other) {
      EXPECT_NE(ended.error.find(place / other), std::string::npos) << ended.error;
      EXPECT_EQ(contentOf(place / file), content);
      EXPECT_FALSE(fs::exists(place / "share"));
    } else {
      checkInstalled(place);
      checkUninstalls(place);
    }
  }
}

}  // namespace
}  // namespace vell::tests
