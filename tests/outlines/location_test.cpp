#include "outlines/location.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/temporary_directory.h"

namespace vell::outlines {
namespace {

namespace fs = std::filesystem;

std::string messageOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const OpenError& error) {
    return error.what();
  }
  return "nothing was thrown";
}

TEST(Absolutize, ResolvesAgainstTheCurrentDirectoryAndNormalises) {
  const std::string here = fs::current_path().string();
  const std::string above = fs::current_path().parent_path().string();
  const std::pair<std::string, std::string> cases[] = {
      {"a.vell", here + "/a.vell"},
      {"./a/../b.vell", here + "/b.vell"},
      {"../b.vell", above + "/b.vell"},
      {"", here},
      {"sub/", here + "/sub"},
      {"~/a.vell", here + "/~/a.vell"},
      {"/x//y/./z.vell", "/x/y/z.vell"},
      {"/../a", "/a"},
      {"/", "/"},
  };
  for (const auto& [path, expected] : cases) EXPECT_EQ(absolutize(path), expected) << path;
  EXPECT_EQ(messageOf([] { absolutize(std::string("/a\0b", 4)); }), "A path holds no NUL character");
}

TEST(Absolutize, SaysThatTheCurrentDirectoryIsGone) {
  const std::string before = fs::current_path().string();
  {
    const tests::TemporaryDirectory gone;
    fs::current_path(gone.path());
  }
  const std::string message = messageOf([] { absolutize("a.vell"); });
  fs::current_path(before);
  EXPECT_EQ(message, "Cannot determine the current directory: No such file or directory");
}

TEST(HostVellApp, IsTheNearestBundleAroundTheResolvedExecutable) {
  const tests::TemporaryDirectory directory;
  const std::string executable = directory.write("Outer.app/Vell.app/Contents/Helpers/vell", "");
  fs::create_symlink(executable, directory / "link");
  EXPECT_EQ(hostVellAppURL(executable), directory / "Outer.app/Vell.app");
  EXPECT_EQ(hostVellAppURL(directory / "link"), directory / "Outer.app/Vell.app");
}

TEST(HostVellApp, SaysWhereItLooked) {
  const tests::TemporaryDirectory directory;
  const std::string executable = directory.write(".app/vell.app", "");
  EXPECT_EQ(messageOf([&] { hostVellAppURL(executable); }),
            "vell CLI is not running inside a Vell.app bundle (executable: " + executable + ")");
  EXPECT_EQ(messageOf([] { hostVellAppURL(std::nullopt); }), "Cannot locate vell CLI executable path");
}

TEST(BundleVersion, JoinsVersionAndBuild) {
  const std::string version = "<key>CFBundleShortVersionString</key><string>1.4</string>";
  const std::pair<std::string, std::string> cases[] = {
      {version + "<key>CFBundleVersion</key><string>52</string>", "1.4 (52)"},
      {version, "1.4"},
      {version + "<key>CFBundleVersion</key><integer>52</integer>", "1.4"},
      {"<key>CFBundleVersion</key><string>52</string>", "dev"},
      {"<key>CFBundleShortVersionString</key><integer>1</integer>", "dev"},
  };
  const tests::TemporaryDirectory directory;
  for (const auto& [members, expected] : cases) {
    directory.write("Contents/Info.plist", R"(<plist version="1.0"><dict>)" + members + "</dict></plist>");
    EXPECT_EQ(bundleVersion(directory.path()), expected) << members;
  }
  EXPECT_EQ(bundleVersion(directory / "missing"), "dev");
}

}  // namespace
}  // namespace vell::outlines
