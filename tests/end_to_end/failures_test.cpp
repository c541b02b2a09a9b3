#include <gtest/gtest.h>

#include <filesystem>

#include "platform/container.h"
#include "tests/end_to_end/application.h"

namespace vell::tests {
namespace {

TEST(Failures, OfOpeningEndAtOnceWithTheReason) {
  const TemporaryHome home;
  const std::string list = home.write("a.json", "[1]"), fine = home.write("notes.html", "one\n");
  const Application application;
  EXPECT_EQ(vell({"open", "outline", list, "--timeout", "60"}).error,
            "Error: Vell could not open " + list + ": line 1 (byte 1): expected a row, not a number\n");
  EXPECT_NE(printed({"open", "outline", fine}).find("notes.html"), std::string::npos);
  for (const std::string name : {"new.html", "no-extension"})
    EXPECT_NE(printed({"create", "outline", home / name}).find(name), std::string::npos);
}

TEST(Failures, ThatNobodyAskedForAreToldByTheNextCommand) {
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
