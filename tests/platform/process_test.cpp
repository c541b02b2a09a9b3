#include "platform/process.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <filesystem>

#include "tests/support/bundle.h"

namespace vell::platform {
namespace {

namespace fs = std::filesystem;
using tests::Bundle;

TEST(OpenFile, LeavesNoChildBehind) {
  const Bundle bundle("exit 0\n");
  openFileWithApplication("/tmp/a.vell", bundle.path());
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST(OpenFile, SaysWhyTheApplicationDidNotStart) {
  const auto failure = [](const std::string& bundle) -> std::string {
    try {
      openFileWithApplication("/tmp/a.vell", bundle);
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "it started";
  };
  const Bundle missing("", "other");
  EXPECT_EQ(failure(missing.path()),
            "cannot start " + missing.path() + "/Contents/MacOS/other: No such file or directory");
  const Bundle forbidden("");
  fs::permissions(forbidden.path() + "/Contents/MacOS/app", fs::perms::owner_read);
  EXPECT_EQ(failure(forbidden.path()),
            "cannot start " + forbidden.path() + "/Contents/MacOS/app: Permission denied");
}

}  // namespace
}  // namespace vell::platform
