#include <gtest/gtest.h>

#include <filesystem>

#include "tests/end_to_end/application.h"

namespace vell::tests {
namespace {

namespace fs = std::filesystem;

TEST(Install, ReplacesAnEarlierVersionAndNoOtherApplication) {
  const std::pair<const char*, bool> rows[] = {
      {nullptr, true},
      {"<plist><dict><key>VellHeadless</key><string/></dict></plist>", true},
      {"<plist><dict><key>CFBundleIdentifier</key><string>app.vell.Vell</string></dict></plist>", false},
      {"", false},
  };
  for (const auto& [list, replaced] : rows) {
    const TemporaryDirectory place;
    if (list != nullptr) place.write("Vell.app/Contents/Info.plist", list);
    const Ended ended = Process({CMAKE, "--install", VELL_BUILD, "--prefix", place.path()}).wait();
    EXPECT_EQ(ended.status == 0, replaced) << ended.error;
    EXPECT_EQ(fs::exists(place / "Vell.app/Contents/Helpers/vell"), replaced);
    if (replaced) continue;
    EXPECT_NE(ended.error.find(place / "Vell.app is another application"), std::string::npos) << ended.error;
    EXPECT_EQ(read(place / "Vell.app/Contents/Info.plist"), list);
  }
}

}  // namespace
}  // namespace vell::tests
