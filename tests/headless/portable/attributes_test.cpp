#include <gtest/gtest.h>
#include <sys/xattr.h>

#include <string>

#include "headless/storage/files.h"
#include "tests/support/temporary_directory.h"

namespace vell::headless {
namespace {

std::string attribute(const std::string& file, const char* name) {
  char value[16] = "";
  const ssize_t size = getxattr(file.c_str(), name, value, sizeof value);
  return size < 0 ? "none" : std::string(value, static_cast<std::size_t>(size));
}

/// macOS has these calls with other parameters.
TEST(Files, ReplacingKeepsExtendedAttributes) {
  const tests::TemporaryDirectory directory;
  const std::string file = directory.write("a.txt", "old");
  if (setxattr(file.c_str(), "user.tag", "red", 3, 0) != 0) GTEST_SKIP() << "no extended attributes here";
  ASSERT_TRUE(replaceExpected(file, {"new"}, stampOf(file), directory / "copy"));
  EXPECT_EQ(readFile(file).bytes, "new");
  EXPECT_EQ(attribute(file, "user.tag"), "red");
  EXPECT_EQ(attribute(file, "user.other"), "none");
}

}  // namespace
}  // namespace vell::headless
